#include "speech/AudioDevices.h"

#include "foundation/Collation.h"

#include <algorithm>

namespace querlin {

namespace {

/// Nothing if nobody can speak into it, or if it can't be named.
std::optional<AudioInputDevice> asInput(AudioHardware::Device device) {
    if (device.inputChannels == 0 || !device.uid || !device.name) return std::nullopt;
    return AudioInputDevice{std::move(*device.uid), std::move(*device.name), device.id};
}

} // namespace

std::vector<AudioInputDevice> AudioDevices::inputs() const {
    std::vector<AudioInputDevice> inputs;
    for (auto& device : hardware_.devices()) {
        if (auto input = asInput(std::move(device))) inputs.push_back(std::move(*input));
    }
    std::ranges::stable_sort(inputs, [](const auto& a, const auto& b) {
        return compareIgnoringCaseLocalized(a.name, b.name) < 0;
    });
    return inputs;
}

std::optional<std::uint32_t> AudioDevices::deviceID(std::string_view uid) const {
    const auto all = inputs();
    const auto found = std::ranges::find(all, uid, &AudioInputDevice::uid);
    return found == all.end() ? std::nullopt : std::optional(found->deviceID);
}

std::optional<AudioInputDevice> AudioDevices::systemDefaultInput() const {
    const auto number = hardware_.defaultInput();
    if (number == 0) return std::nullopt;
    auto devices = hardware_.devices();
    const auto found = std::ranges::find(devices, number, &AudioHardware::Device::id);
    return found == devices.end() ? std::nullopt : asInput(std::move(*found));
}

} // namespace querlin
