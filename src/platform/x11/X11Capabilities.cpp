#include "platform/x11/X11Capabilities.h"

#include "platform/x11/KeyStream.h"

#include <xcb/xtest.h>

namespace querlin {

namespace {

constexpr Duration longestAnswer = std::chrono::milliseconds(250);
constexpr Duration betweenAttempts = std::chrono::seconds(1);

} // namespace

bool X11Capabilities::isThere() {
    if (connection_ && connection_->drain()) return true;
    connection_.reset();
    const auto now = std::chrono::steady_clock::now();
    if (now < nextAttempt_) return false;
    auto connection = XcbConnection::open(display_, longestAnswer);
    if (!connection) {
        nextAttempt_ = now + betweenAttempts;
        return false;
    }
    connection_ = std::move(*connection);
    canListenToKeys_ = KeyStream::isOfferedBy(*connection_);
    canPressKeys_ = connection_->hasExtension(xcb_test_id);
    return true;
}

} // namespace querlin
