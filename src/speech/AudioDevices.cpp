#include "speech/AudioDevices.h"

#include "foundation/Collation.h"

#include <algorithm>

namespace querlin {

std::vector<AudioInputDevice> AudioDevices::inputs() const {
    std::vector<AudioInputDevice> inputs;
    for (auto& device : hardware_.devices()) {
        if (device.inputChannels == 0 || !device.uid || !device.name) continue;
        inputs.push_back({std::move(*device.uid), std::move(*device.name), device.id});
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
    const auto all = inputs();
    const auto found = std::ranges::find(all, number, &AudioInputDevice::deviceID);
    return found == all.end() ? std::nullopt : std::optional(*found);
}

} // namespace querlin
