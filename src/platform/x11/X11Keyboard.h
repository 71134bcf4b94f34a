#pragma once

#include "desktop/KeyboardEvents.h"
#include "foundation/MainQueue.h"
#include "platform/x11/XcbConnection.h"

#include <memory>
#include <mutex>
#include <string>

namespace querlin {

/// The keyboard as the X server sees it. Each tap has a connection and a thread of its own, so that one that
/// is slow holds nobody up. Main thread, but for `isAvailable`.
class X11Keyboard final : public KeyboardEvents {
public:
    /// `display` names the server (":1"); empty means that of the environment.
    explicit X11Keyboard(MainQueue& queue, std::string display = {}) :
        queue_(queue), display_(std::move(display)) {}

    std::unique_ptr<EventTap> createTap(std::uint32_t eventMask, Handler handler) override;
    Registration addMonitor(Handler handler) override;

    /// Whether keys can be listened to and pressed: a server with XInput 2 and XTest. Any thread;
    /// microseconds, but for the first time and where there is no server.
    bool isAvailable();

private:
    MainQueue& queue_;
    const std::string display_;
    std::mutex mutex_;
    std::unique_ptr<XcbConnection> probe_; ///< guarded by the mutex
};

} // namespace querlin
