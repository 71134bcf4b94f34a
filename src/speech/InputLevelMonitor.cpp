#include "speech/InputLevelMonitor.h"

#include "speech/AudioLevel.h"

namespace querlin {

namespace {

constexpr std::uint32_t framesPerBuffer = 2048;

} // namespace

InputLevelMonitor::InputLevelMonitor(MainQueue& queue, AudioHardware& hardware) :
    queue_(queue), devices_(hardware), engine_(hardware.makeEngine()) {}

InputLevelMonitor::~InputLevelMonitor() { stop(); }

void InputLevelMonitor::start(const std::optional<std::string>& deviceUID) {
    stop();
    failure_.set(std::nullopt);
    engine_->reset();
    if (deviceUID) {
        // A device that is missing or refuses is no error here: the default is listened to.
        if (const auto device = devices_.deviceID(*deviceUID)) (void)engine_->setDevice(*device);
    }
    const auto format = engine_->inputFormat();
    if (!format.isUsable()) {
        failure_.set("Kein Eingang verfügbar.");
        return;
    }
    listening_.emplace();
    auto post = listening_->onMain(queue_, [this](float level) { show(level); });
    engine_->installTap(framesPerBuffer, format, [post = std::move(post)](const AudioBuffer& buffer) {
        if (const auto level = AudioLevel::of(buffer)) post(*level);
    });
    if (const auto started = engine_->start(); !started) {
        engine_->removeTap();
        listening_.reset();
        failure_.set(started.error());
        return;
    }
    isRunning_.set(true);
}

void InputLevelMonitor::stop() {
    if (!isRunning_.get() && !engine_->isRunning()) return;
    engine_->removeTap();
    engine_->stop();
    listening_.reset();
    isRunning_.set(false);
    smoothed_ = 0;
    level_.set(0);
}

void InputLevelMonitor::show(float level) {
    smoothed_ = AudioLevel::smoothed(smoothed_, level);
    level_.set(smoothed_);
}

} // namespace querlin
