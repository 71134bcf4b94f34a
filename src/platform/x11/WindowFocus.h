#pragma once

#include "platform/x11/XcbAtoms.h"

#include <string_view>
#include <vector>

namespace querlin {

/// Which window has the keyboard, whose it is, and how another one gets it: by the window manager (Extended
/// Window Manager Hints) or, where there is none, by the server itself. On the connection's thread.
class WindowFocus {
public:
    WindowFocus(XcbConnection& connection, XcbAtoms& atoms) : connection_(connection), atoms_(atoms) {}

    /// Finds out anew whether somebody manages the windows.
    void lookForManager();
    bool isManaged() const { return isManaged_; }
    /// Whether a change of this property of the root window means that there may be another manager, or that
    /// another window may have the keyboard.
    bool tellsOfManager(xcb_atom_t property);
    bool tellsOfFocus(xcb_atom_t property);

    /// XCB_WINDOW_NONE if no window has the keyboard.
    xcb_window_t active();
    /// Whether it is a window of another program, and none of the desktop's own (background, panels).
    bool isOfAnotherProgram(xcb_window_t window);
    /// Whether it can have the keyboard: what is minimised can, what is hidden can't.
    bool isThere(xcb_window_t window);
    /// Wishes for the keyboard in the user's name. `time` is the server's.
    void activate(xcb_window_t window, xcb_timestamp_t time);

private:
    std::vector<std::uint32_t> numbers(xcb_window_t window, std::string_view property);
    xcb_window_t parentOf(xcb_window_t window);
    void askManager(xcb_window_t window, xcb_timestamp_t time);
    void takeFromServer(xcb_window_t window);

    XcbConnection& connection_;
    XcbAtoms& atoms_;
    bool isManaged_ = false;
};

} // namespace querlin
