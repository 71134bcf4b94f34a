#include "platform/pulse/PulseAudio.h"

#include "platform/pulse/PulseConnection.h"
#include "platform/pulse/PulseEngine.h"

namespace querlin {

PulseAudio::PulseAudio(MainQueue& queue, std::string server) :
    queue_(queue), connection_(std::make_unique<PulseConnection>(std::move(server))) {}

PulseAudio::~PulseAudio() = default;

std::vector<AudioHardware::Device> PulseAudio::devices() {
    std::vector<Device> devices;
    for (auto& source : connection_->sources()) {
        auto& device = devices.emplace_back();
        device.id = PulseEngine::deviceNumber(source);
        device.inputChannels = source.isMonitor ? 0 : source.format.channelCount;
        device.uid = std::move(source.name);
        device.name = std::move(source.description);
    }
    return devices;
}

std::uint32_t PulseAudio::defaultInput() {
    const auto source = connection_->defaultMicrophone();
    return source ? PulseEngine::deviceNumber(*source) : 0;
}

std::unique_ptr<AudioEngine> PulseAudio::makeEngine() {
    return std::make_unique<PulseEngine>(queue_, *connection_);
}

} // namespace querlin
