#pragma once

#include "foundation/Lifetime.h"
#include "foundation/MainQueue.h"
#include "foundation/Published.h"
#include "speech/AudioDevices.h"
#include "speech/AudioEngine.h"

#include <memory>
#include <optional>
#include <string>

namespace querlin {

/// Shows outside of a dictation whether a microphone hears anything. Main thread.
class InputLevelMonitor {
public:
    InputLevelMonitor(MainQueue& queue, AudioHardware& hardware);
    ~InputLevelMonitor();
    InputLevelMonitor(const InputLevelMonitor&) = delete;
    InputLevelMonitor& operator=(const InputLevelMonitor&) = delete;

    /// Listens to the device, or to the default input if it is none or can't be had. Listens anew when
    /// it does already.
    void start(const std::optional<std::string>& deviceUID);
    void stop();

    /// From 0 to 1, smoothed.
    const Published<float>& level() const { return level_; }
    const Published<bool>& isRunning() const { return isRunning_; }
    /// Why it can't listen, in German.
    const Published<std::optional<std::string>>& failure() const { return failure_; }

private:
    void show(float level);

    MainQueue& queue_;
    AudioDevices devices_;
    Published<float> level_{0};
    Published<bool> isRunning_{false};
    Published<std::optional<std::string>> failure_;
    float smoothed_ = 0;
    std::unique_ptr<AudioEngine> engine_;
    /// Of the present listening: levels of an earlier one that are still on their way go with it.
    std::optional<Lifetime> listening_;
};

} // namespace querlin
