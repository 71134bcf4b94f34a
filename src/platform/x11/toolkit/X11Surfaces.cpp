#include "platform/x11/toolkit/X11Surfaces.h"

#include "platform/x11/toolkit/ToolkitConnection.h"

namespace querlin {

bool X11Surfaces::areBlended() {
    auto* connection = ToolkitConnection::get();
    if (!connection) return true; // Whatever else windows are drawn on, it knows transparency.
    // Its owner composes the screen (Extended Window Manager Hints, Compositing Managers).
    return ToolkitConnection::selectionOwner(connection, "_NET_WM_CM_S0") != XCB_WINDOW_NONE;
}

/// Asks the window manager (Extended Window Manager Hints, _NET_ACTIVE_WINDOW).
void X11Surfaces::activate(WindowNumber window) {
    auto* connection = ToolkitConnection::get();
    if (!connection) return;
    constexpr std::uint32_t theUserWishesIt = 2;
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = static_cast<xcb_window_t>(window);
    message.type = ToolkitConnection::atom(connection, "_NET_ACTIVE_WINDOW");
    message.data.data32[0] = theUserWishesIt;
    xcb_send_event(
        connection, 0, ToolkitConnection::rootWindow(connection),
        XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
        reinterpret_cast<const char*>(&message)); // NOLINT(*-reinterpret-cast): the protocol's bytes.
    xcb_flush(connection);
}

} // namespace querlin
