#include "platform/x11/toolkit/X11SystemTray.h"

#include "platform/x11/toolkit/ToolkitConnection.h"
#include "state/DiagnosticsLog.h"

#include <QCoreApplication>
#include <fmt/format.h>
#include <xcb/xfixes.h>

namespace querlin {

namespace {

using ToolkitConnection::ReplyPointer;

/// Of the screen that the environment names (":0.1"); nearly always the first.
int screenNumber() {
    char* host = nullptr;
    int display = 0;
    int screen = 0;
    xcb_parse_display(nullptr, &host, &display, &screen);
    const ReplyPointer<char> freed(host);
    return screen;
}

/// The number of the event that tells of a selection's new owner; 0 where the server doesn't.
std::uint8_t followOwner(xcb_connection_t* connection, xcb_atom_t selection) {
    const auto* extension = xcb_get_extension_data(connection, &xcb_xfixes_id);
    if (!extension || !extension->present) return 0;
    const ReplyPointer<xcb_xfixes_query_version_reply_t> version(xcb_xfixes_query_version_reply(
        connection, xcb_xfixes_query_version(connection, XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION),
        nullptr));
    if (!version) return 0;
    xcb_xfixes_select_selection_input(connection, ToolkitConnection::rootWindow(connection), selection,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    xcb_flush(connection);
    return static_cast<std::uint8_t>(extension->first_event + XCB_XFIXES_SELECTION_NOTIFY);
}

} // namespace

X11SystemTray::X11SystemTray(MainQueue& queue) :
    // The toolkit is in the middle of its events when it shows them.
    publishSoon_(lifetime_.onMain(queue, [this](bool isThere) { isThere_.set(isThere); })) {
    auto* connection = ToolkitConnection::get();
    if (!connection) return;
    const auto name = fmt::format("_NET_SYSTEM_TRAY_S{}", screenNumber());
    selection_ = ToolkitConnection::atom(connection, name);
    notification_ = followOwner(connection, selection_);
    if (notification_ == 0)
        DiagnosticsLog::note("menu", "Der Anzeigeserver meldet keine neuen Leisten (XFixes fehlt).");
    // Asked last: no gap between the two.
    isThere_.set(ToolkitConnection::selectionOwner(connection, name) != XCB_WINDOW_NONE);
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11SystemTray::~X11SystemTray() {
    if (auto* application = QCoreApplication::instance()) application->removeNativeEventFilter(this);
}

bool X11SystemTray::nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/) {
    constexpr int sentByAClient = 0x80;
    if (notification_ == 0 || eventType != "xcb_generic_event_t") return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & ~sentByAClient) != notification_) return false;
    const auto* change = static_cast<const xcb_xfixes_selection_notify_event_t*>(message);
    if (change->selection != selection_) return false;
    publishSoon_(change->owner != XCB_WINDOW_NONE);
    return false;
}

} // namespace querlin
