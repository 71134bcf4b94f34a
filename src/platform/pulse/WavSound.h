#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace querlin {

/// A short sound, whole in memory: samples of 16 bits, little-endian, as they lie in the file.
struct WavSound {
    std::uint32_t samplesPerSecond = 0;
    std::uint8_t channelCount = 0;
    std::string samples; ///< whole frames

    /// From a RIFF file with PCM of 16 bits, one or two channels, 8 to 192 kHz. Nothing for any other one,
    /// for a damaged one and for one without a frame. Chunks that aren't needed are skipped.
    static std::optional<WavSound> parse(std::string_view file);
};

} // namespace querlin
