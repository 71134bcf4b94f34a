#include "platform/x11/KeyboardGrab.h"

#include "platform/x11/ActiveWindow.h"

namespace querlin {

namespace {

constexpr Duration longestAnswer = std::chrono::milliseconds(500);

} // namespace

XcbConnection* KeyboardGrab::connect() {
    if (connection_ && connection_->drain()) return connection_.get();
    atoms_.reset();
    connection_.reset();
    auto connection = XcbConnection::open(display_, longestAnswer);
    if (!connection) return nullptr; // Without a server nobody has its keyboard.
    connection_ = std::move(*connection);
    atoms_ = std::make_unique<XcbAtoms>(*connection_);
    return connection_.get();
}

bool KeyboardGrab::isGrabbed(XcbConnection& connection) const {
    // In one go, so that the server lets go of it at once.
    const auto wanted = xcb_grab_keyboard(connection.get(), 0, connection.root(), XCB_CURRENT_TIME,
                                          XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    xcb_ungrab_keyboard(connection.get(), XCB_CURRENT_TIME);
    const auto reply = connection.reply(xcb_grab_keyboard_reply, wanted);
    return reply &&
           (reply->status == XCB_GRAB_STATUS_ALREADY_GRABBED || reply->status == XCB_GRAB_STATUS_FROZEN);
}

bool KeyboardGrab::isHeldByOther() {
    const std::scoped_lock guard(mutex_);
    auto* connection = connect();
    return connection != nullptr && isGrabbed(*connection);
}

std::optional<std::int32_t> KeyboardGrab::likelyOwner() {
    const std::scoped_lock guard(mutex_);
    auto* connection = connect();
    if (!connection || !isGrabbed(*connection)) return std::nullopt;
    const auto window = ActiveWindow::look(*connection, *atoms_);
    if (!window || window->processIdentifier <= 0) return std::nullopt;
    return window->processIdentifier;
}

} // namespace querlin
