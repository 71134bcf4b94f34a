#include "ui/overlay/Compositor.h"

#include <cstdlib>
#include <memory>

#include <QGuiApplication>
#include <qguiapplication_platform.h>
#include <xcb/xcb.h>

namespace querlin::Compositor {

namespace {

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); } // NOLINT: the library's replies are malloc's.
};
template<class Reply>
using ReplyPointer = std::unique_ptr<Reply, FreeReply>;

/// Its owner composes the screen (Extended Window Manager Hints, Compositing Managers).
xcb_atom_t selectionAtom(xcb_connection_t* connection) {
    constexpr std::string_view name = "_NET_WM_CM_S0";
    const auto cookie = xcb_intern_atom(connection, 0, name.size(), name.data());
    const ReplyPointer<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(connection, cookie, nullptr));
    return atom ? atom->atom : xcb_atom_t(XCB_ATOM_NONE);
}

} // namespace

bool isRunning() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11) return true; // Other display servers always compose.
    auto* connection = x11->connection();
    static const auto selection = selectionAtom(connection);
    const auto cookie = xcb_get_selection_owner(connection, selection);
    const ReplyPointer<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(connection, cookie, nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

} // namespace querlin::Compositor
