#pragma once

#include "platform/x11/XcbConnection.h"

#include <memory>
#include <string>

namespace querlin {

/// What the X server offers at this moment. Main thread; microseconds as long as the server is there, a
/// quarter of a second at most, and once a second, where it isn't.
class X11Capabilities {
public:
    /// `display` names the server (":1"); empty means that of the environment.
    explicit X11Capabilities(std::string display = {}) : display_(std::move(display)) {}

    /// Raw key events (XInput 2.1).
    bool canListenToKeys() { return isThere() && canListenToKeys_; }
    /// Synthetic keys (XTest).
    bool canPressKeys() { return isThere() && canPressKeys_; }

private:
    bool isThere();

    const std::string display_;
    std::unique_ptr<XcbConnection> connection_;
    Instant nextAttempt_;
    bool canListenToKeys_ = false;
    bool canPressKeys_ = false;
};

} // namespace querlin
