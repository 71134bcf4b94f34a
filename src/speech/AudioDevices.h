#pragma once

#include "speech/AudioEngine.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace querlin {

/// A microphone, as lists show it.
struct AudioInputDevice {
    std::string uid;            ///< stable across runs; what the settings store
    std::string name;           ///< for people
    std::uint32_t deviceID = 0; ///< its number in this run

    bool operator==(const AudioInputDevice&) const = default;
};

/// The machine's microphones, read afresh at each call. Main thread; blocks for a moment.
class AudioDevices {
public:
    explicit AudioDevices(AudioHardware& hardware) : hardware_(hardware) {}

    /// All devices with input channels, sorted by name as a German list is.
    std::vector<AudioInputDevice> inputs() const;
    std::optional<std::uint32_t> deviceID(std::string_view uid) const;
    std::optional<AudioInputDevice> systemDefaultInput() const;

private:
    AudioHardware& hardware_;
};

} // namespace querlin
