#include "ui/windows/BringToFront.h"

#include <cstdlib>
#include <memory>

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <qguiapplication_platform.h>
#include <xcb/xcb.h>

namespace querlin {

namespace {

/// Asks the window manager in the user's name (Extended Window Manager Hints, _NET_ACTIVE_WINDOW).
void activateByWindowManager(xcb_connection_t* connection, xcb_window_t window) {
    constexpr std::string_view name = "_NET_ACTIVE_WINDOW";
    const auto cookie = xcb_intern_atom(connection, 0, name.size(), name.data());
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
        xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
    if (!atom) return;
    constexpr std::uint32_t theUserWishesIt = 2;
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom->atom;
    message.data.data32[0] = theUserWishesIt;
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    xcb_send_event(connection, 0, root, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message)); // NOLINT: the protocol's bytes.
    xcb_flush(connection);
}

} // namespace

void bringToFront(QWidget& window) {
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
    if (const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>())
        activateByWindowManager(x11->connection(), static_cast<xcb_window_t>(window.winId()));
}

void centre(QWidget& window) {
    const auto* under = QGuiApplication::screenAt(QCursor::pos());
    const auto* screen = under ? under : QGuiApplication::primaryScreen();
    if (screen) window.move(screen->availableGeometry().center() - window.rect().center());
}

} // namespace querlin
