#include "speech/AudioDevices.h"

#include "foundation/Collation.h"

#include <algorithm>

namespace querlin {

const std::vector<AudioInputDevice>& AudioDevices::inputs() {
    auto now = hardware_.inputs();
    if (now == known_) return inputs_;
    known_ = std::move(now);
    inputs_.clear();
    for (const auto& device : known_->devices) {
        if (device.inputChannels == 0 || !device.uid || !device.name) continue;
        inputs_.push_back({*device.uid, *device.name, device.id});
    }
    std::ranges::stable_sort(inputs_, [](const auto& a, const auto& b) {
        return compareIgnoringCaseLocalized(a.name, b.name) < 0;
    });
    return inputs_;
}

std::optional<std::uint32_t> AudioDevices::deviceID(std::string_view uid) {
    const auto& all = inputs();
    const auto found = std::ranges::find(all, uid, &AudioInputDevice::uid);
    return found == all.end() ? std::nullopt : std::optional(found->deviceID);
}

std::optional<AudioInputDevice> AudioDevices::systemDefaultInput() {
    const auto& all = inputs();
    const auto found = std::ranges::find(all, known_->defaultInput, &AudioInputDevice::deviceID);
    return found == all.end() ? std::nullopt : std::optional(*found);
}

} // namespace querlin
