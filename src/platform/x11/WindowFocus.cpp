#include "platform/x11/WindowFocus.h"

#include <algorithm>
#include <array>

#include <unistd.h>

namespace querlin {

namespace {

bool contains(const std::vector<std::uint32_t>& numbers, std::uint32_t wanted) {
    return std::ranges::find(numbers, wanted) != numbers.end();
}

} // namespace

/// A manager that has gone leaves its properties on the root window, but its own window is gone.
void WindowFocus::lookForManager() {
    const auto check = numbers(connection_.root(), "_NET_SUPPORTING_WM_CHECK");
    isManaged_ = !check.empty() &&
                 contains(numbers(check.front(), "_NET_SUPPORTING_WM_CHECK"), check.front()) &&
                 contains(numbers(connection_.root(), "_NET_SUPPORTED"), atoms_.atom("_NET_ACTIVE_WINDOW"));
}

bool WindowFocus::tellsOfManager(xcb_atom_t property) {
    return property == atoms_.atom("_NET_SUPPORTING_WM_CHECK") || property == atoms_.atom("_NET_SUPPORTED");
}

bool WindowFocus::tellsOfFocus(xcb_atom_t property) { return property == atoms_.atom("_NET_ACTIVE_WINDOW"); }

xcb_window_t WindowFocus::active() {
    if (isManaged_) {
        const auto active = numbers(connection_.root(), "_NET_ACTIVE_WINDOW");
        return active.empty() ? xcb_window_t{XCB_WINDOW_NONE} : active.front();
    }
    const auto focus = connection_.reply(xcb_get_input_focus_reply, xcb_get_input_focus(connection_.get()));
    const bool isWindow =
        focus && focus->focus != XCB_INPUT_FOCUS_POINTER_ROOT && focus->focus != connection_.root();
    return isWindow ? focus->focus : xcb_window_t{XCB_WINDOW_NONE};
}

bool WindowFocus::isOfAnotherProgram(xcb_window_t window) {
    auto saying =
        window; // Without a manager the keyboard may belong to a window within the one that says whose it is.
    auto process = numbers(saying, "_NET_WM_PID");
    while (process.empty() && !isManaged_) {
        saying = parentOf(saying);
        if (saying == XCB_WINDOW_NONE || saying == connection_.root()) break;
        process = numbers(saying, "_NET_WM_PID");
    }
    if (!process.empty() && process.front() == static_cast<std::uint32_t>(::getpid())) return false;
    const auto types = numbers(window, "_NET_WM_WINDOW_TYPE");
    return !contains(types, atoms_.atom("_NET_WM_WINDOW_TYPE_DESKTOP")) &&
           !contains(types, atoms_.atom("_NET_WM_WINDOW_TYPE_DOCK"));
}

bool WindowFocus::isThere(xcb_window_t window) {
    if (isManaged_) {
        constexpr std::uint32_t withdrawn = 0;
        const auto state = numbers(window, "WM_STATE");
        return !state.empty() && state.front() != withdrawn;
    }
    const auto attributes = connection_.reply(xcb_get_window_attributes_reply,
                                              xcb_get_window_attributes(connection_.get(), window));
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

void WindowFocus::activate(xcb_window_t window, xcb_timestamp_t time) {
    if (isManaged_) {
        askManager(window, time);
    } else {
        takeFromServer(window);
    }
    connection_.flush();
}

std::vector<std::uint32_t> WindowFocus::numbers(xcb_window_t window, std::string_view property) {
    const auto cookie = askForProperty(connection_, window, atoms_.atom(property));
    return takeProperty(connection_.reply(xcb_get_property_reply, cookie)).value_or(XcbProperty()).numbers();
}

xcb_window_t WindowFocus::parentOf(xcb_window_t window) {
    const auto tree = connection_.reply(xcb_query_tree_reply, xcb_query_tree(connection_.get(), window));
    return tree ? tree->parent : xcb_window_t{XCB_WINDOW_NONE};
}

void WindowFocus::askManager(xcb_window_t window, xcb_timestamp_t time) {
    constexpr std::uint32_t theUserWishesIt = 2;
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atoms_.atom("_NET_ACTIVE_WINDOW");
    message.data.data32[0] = theUserWishesIt;
    message.data.data32[1] = time;
    xcb_send_event(
        connection_.get(), 0, connection_.root(),
        XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
        reinterpret_cast<const char*>(&message)); // NOLINT(*-reinterpret-cast): the protocol's bytes.
}

/// Visible, too: raises the window that lies directly on the screen.
void WindowFocus::takeFromServer(xcb_window_t window) {
    auto topLevel = window;
    for (auto above = parentOf(window); above != XCB_WINDOW_NONE && above != connection_.root();
         above = parentOf(above)) {
        topLevel = above;
    }
    constexpr std::array<std::uint32_t, 1> toTheTop = {XCB_STACK_MODE_ABOVE};
    xcb_configure_window(connection_.get(), topLevel, XCB_CONFIG_WINDOW_STACK_MODE, toTheTop.data());
    xcb_set_input_focus(connection_.get(), XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
}

} // namespace querlin
