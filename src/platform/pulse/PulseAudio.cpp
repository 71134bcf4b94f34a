#include "platform/pulse/PulseAudio.h"

#include "platform/pulse/PulseConnection.h"
#include "platform/pulse/PulseEngine.h"

namespace querlin {

PulseAudio::PulseAudio(MainQueue& queue, std::string server) :
    queue_(queue), connection_(std::make_unique<PulseConnection>(std::move(server))) {}

PulseAudio::~PulseAudio() = default;

std::shared_ptr<const AudioHardware::Inputs> PulseAudio::inputs() {
    const auto now = connection_->inputs();
    if (now == known_) return inputs_;
    auto inputs = std::make_shared<Inputs>();
    for (const auto& source : now->sources) {
        inputs->devices.push_back({.id = PulseEngine::deviceNumber(source),
                                   .uid = source.name,
                                   .name = source.description,
                                   .inputChannels = source.isMonitor ? 0 : source.format.channelCount});
    }
    if (const auto* source = now->defaultMicrophone())
        inputs->defaultInput = PulseEngine::deviceNumber(*source);
    known_ = now;
    inputs_ = std::move(inputs);
    return inputs_;
}

std::unique_ptr<AudioEngine> PulseAudio::makeEngine() {
    return std::make_unique<PulseEngine>(queue_, *connection_);
}

} // namespace querlin
