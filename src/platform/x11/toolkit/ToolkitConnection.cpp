#include "platform/x11/toolkit/ToolkitConnection.h"

#include <map>
#include <string>

#include <QGuiApplication>
#include <qguiapplication_platform.h>

namespace querlin::ToolkitConnection {

xcb_connection_t* get() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

xcb_window_t rootWindow(xcb_connection_t* connection) {
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

xcb_atom_t atom(xcb_connection_t* connection, std::string_view name) {
    static std::map<std::string, xcb_atom_t, std::less<>> known;
    if (const auto found = known.find(name); found != known.end()) return found->second;
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const ReplyPointer<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
    if (!reply) return XCB_ATOM_NONE;
    known.emplace(name, reply->atom);
    return reply->atom;
}

xcb_window_t selectionOwner(xcb_connection_t* connection, std::string_view selection) {
    const auto cookie = xcb_get_selection_owner(connection, atom(connection, selection));
    const ReplyPointer<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection, cookie, nullptr));
    return reply ? reply->owner : xcb_window_t(XCB_WINDOW_NONE);
}

} // namespace querlin::ToolkitConnection
