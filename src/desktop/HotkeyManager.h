#pragma once

#include "desktop/KeyboardEvents.h"
#include "desktop/Permissions.h"
#include "foundation/Lifetime.h"
#include "foundation/MainQueue.h"
#include "state/HotkeyConfig.h"

#include <functional>
#include <memory>
#include <string>

namespace querlin {

/// Listens for the hold key, anywhere on the desktop, and makes one press and one release of each hold.
/// Nothing is swallowed. Main thread only.
class HotkeyManager {
public:
    /// `bundlePath` is where the program lies, for the diagnostics.
    HotkeyManager(MainQueue& queue, KeyboardEvents& keyboard, PermissionsManager& permissions,
                  const HotkeyConfig& config, std::string bundlePath);
    HotkeyManager(const HotkeyManager&) = delete;
    HotkeyManager& operator=(const HotkeyManager&) = delete;

    /// Called on the main thread, never inside a call of ours. Set before `start`.
    void setCallbacks(std::function<void()> onPress, std::function<void()> onRelease);
    /// Begins to listen, anew if it does already. False without the permission, or where the desktop refuses.
    bool start();
    /// A hold that is under way ends without a release.
    void stop();
    /// Takes another key. A hold of the former one ends with a release.
    void update(const HotkeyConfig& config);

    bool isRunning() const { return isRunning_; }
    bool isHotkeyDown() const { return isHotkeyDown_; }
    /// Events seen since the last successful start, of whatever key.
    std::int64_t observedEventCount() const { return observedEventCount_; }
    /// Several lines for the diagnostics.
    std::string diagnosticsSummary();

private:
    void handle(const KeyEvent& event);
    void handleModifier(const KeyEvent& event);
    void handleCombo(const KeyEvent& event);
    void setDown(bool down);
    void startGlobalMonitor();

    MainQueue& queue_;
    KeyboardEvents& keyboard_;
    PermissionsManager& permissions_;
    HotkeyConfig config_;
    const std::string bundlePath_;
    std::function<void()> onPress_;
    std::function<void()> onRelease_;

    std::unique_ptr<EventTap> eventTap_;
    Registration globalMonitor_;
    bool isRunning_ = false;
    bool isHotkeyDown_ = false;
    std::int64_t observedEventCount_ = 0;
    /// Over the whole life.
    std::int64_t monitorEventCount_ = 0;
    Lifetime lifetime_;
};

} // namespace querlin
