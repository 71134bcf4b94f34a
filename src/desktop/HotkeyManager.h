#pragma once

#include "desktop/HoldKey.h"
#include "desktop/Permissions.h"
#include "foundation/Lifetime.h"
#include "foundation/MainQueue.h"

#include <functional>
#include <string>

namespace querlin {

/// Listens for the hold key, anywhere on the desktop, and makes of each hold one press and one release, or
/// one press and one abandonment where the key turned out to be part of a shortcut. Main thread only.
class HotkeyManager {
public:
    /// Another key that goes down this soon after a modifier makes a shortcut or a symbol with it.
    static constexpr Duration shortcutSpan = std::chrono::milliseconds(800);

    /// `programPath` is for the diagnostics.
    HotkeyManager(MainQueue& queue, HoldKey& holdKey, PermissionsManager& permissions,
                  const HotkeyConfig& config, std::string programPath);
    HotkeyManager(const HotkeyManager&) = delete;
    HotkeyManager& operator=(const HotkeyManager&) = delete;

    /// Called on the main thread, never inside a call of ours. Set before `start`. A press is followed by
    /// either `onRelease` or `onAbandon`.
    void setCallbacks(std::function<void()> onPress, std::function<void()> onRelease,
                      std::function<void()> onAbandon);
    /// Begins to listen, anew if it does already. False without the permission, or where the desktop refuses.
    bool start();
    /// A hold that is under way ends without a release.
    void stop();
    /// Takes another key. A hold of the former one ends with a release.
    void update(const HotkeyConfig& config);

    bool isRunning() const { return static_cast<bool>(listening_); }
    bool isHotkeyDown() const { return isDown_; }
    /// Whether a shortcut can be told from a hold; where it can't, `onAbandon` is never called.
    bool tellsOtherKeys() const { return holdKey_.tellsOtherKeys(); }
    /// The key that is really bound, in words; empty while none is.
    std::string boundKey() const { return holdKey_.boundKey(); }
    /// Several lines for the diagnostics.
    std::string diagnosticsSummary();

private:
    void listen();
    void handle(const HoldKeyEvent& event);
    void press(Instant at);
    void end();
    void abandonIfShortcut(Instant at);
    void post(std::function<void()> HotkeyManager::* callback);

    MainQueue& queue_;
    HoldKey& holdKey_;
    PermissionsManager& permissions_;
    HotkeyConfig config_;
    const std::string programPath_;
    std::function<void()> onPress_;
    std::function<void()> onRelease_;
    std::function<void()> onAbandon_;

    bool isDown_ = false;
    bool isAbandoned_ = false; ///< the hold that is under way
    Instant pressedAt_;
    std::uint64_t presses_ = 0;
    std::uint64_t abandonments_ = 0;
    Lifetime lifetime_;
    Registration listening_;
};

} // namespace querlin
