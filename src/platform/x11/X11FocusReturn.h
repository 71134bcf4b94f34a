#pragma once

#include "desktop/FocusReturn.h"
#include "foundation/MainQueue.h"
#include "platform/x11/WakeUp.h"
#include "platform/x11/XcbAtoms.h"
#include "platform/x11/XcbConnection.h"

#include <atomic>
#include <memory>
#include <string>
#include <thread>

namespace querlin {

/// Follows which window is in front, as the window manager tells it, and brings the last one that wasn't ours back
/// there. Without a window manager there is nothing to give back to. Main thread.
class X11FocusReturn final : public FocusReturn {
public:
    /// `display` names the server (":1"); empty means that of the environment.
    explicit X11FocusReturn(MainQueue& queue, const std::string& display = {});
    ~X11FocusReturn() override;
    X11FocusReturn(const X11FocusReturn&) = delete;
    X11FocusReturn& operator=(const X11FocusReturn&) = delete;

    Task<bool> giveBack() override;

private:
    void serve();
    bool hasChanged();
    void look();
    void activate();
    bool isOfOthers(xcb_window_t window);
    std::vector<std::uint32_t> numbers(xcb_window_t window, std::string_view property);

    MainQueue& queue_;

    // The thread's
    std::unique_ptr<XcbConnection> connection_;
    std::unique_ptr<XcbAtoms> atoms_;

    // Shared
    WakeUp wakeUp_;
    std::atomic<xcb_window_t> active_ = XCB_WINDOW_NONE;
    /// The last one in front that belongs to somebody else.
    std::atomic<xcb_window_t> other_ = XCB_WINDOW_NONE;
    std::atomic<bool> isWished_ = false;
    std::atomic<bool> isEnding_ = false;
    std::thread thread_;
};

} // namespace querlin
