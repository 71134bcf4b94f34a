#pragma once

#include <cstdint>
#include <span>

namespace querlin {

struct AudioFormat {
    double sampleRate = 0;
    std::uint32_t channelCount = 0;

    /// Whether sound can have this format; an input that is missing has none.
    bool isUsable() const { return sampleRate > 0 && channelCount > 0; }

    bool operator==(const AudioFormat&) const = default;
};

/// A stretch of sound as the capture delivers it: 32-bit floats from -1 to 1, the channels of a frame
/// side by side. Valid during the call that hands it over.
struct AudioBuffer {
    AudioFormat format;
    std::span<const float> samples;
};

} // namespace querlin
