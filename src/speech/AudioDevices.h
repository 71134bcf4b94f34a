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

/// The machine's microphones at this moment. Main thread.
class AudioDevices {
public:
    explicit AudioDevices(AudioHardware& hardware) : hardware_(hardware) {}

    /// All devices with input channels, sorted by name as a German list is.
    const std::vector<AudioInputDevice>& inputs();
    std::optional<std::uint32_t> deviceID(std::string_view uid);
    std::optional<AudioInputDevice> systemDefaultInput();

private:
    AudioHardware& hardware_;
    std::shared_ptr<const AudioHardware::Inputs> known_; ///< what `inputs_` was made of
    std::vector<AudioInputDevice> inputs_;
};

} // namespace querlin
