#include "ui/display/BringToFront.h"

#include "ui/display/X11Display.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

namespace querlin {

namespace {

/// Asks the window manager in the user's name (Extended Window Manager Hints, _NET_ACTIVE_WINDOW).
void activateByWindowManager(xcb_connection_t* connection, xcb_window_t window) {
    constexpr std::uint32_t theUserWishesIt = 2;
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = X11Display::atom(connection, "_NET_ACTIVE_WINDOW");
    message.data.data32[0] = theUserWishesIt;
    xcb_send_event(
        connection, 0, X11Display::rootWindow(connection),
        XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
        reinterpret_cast<const char*>(&message)); // NOLINT(*-reinterpret-cast): the protocol's bytes.
    xcb_flush(connection);
}

} // namespace

void bringToFront(QWidget& window) {
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
    if (auto* connection = X11Display::connection())
        activateByWindowManager(connection, static_cast<xcb_window_t>(window.winId()));
}

void centre(QWidget& window) {
    const auto* under = QGuiApplication::screenAt(QCursor::pos());
    const auto* screen = under ? under : QGuiApplication::primaryScreen();
    if (screen) window.move(screen->availableGeometry().center() - window.rect().center());
}

} // namespace querlin
