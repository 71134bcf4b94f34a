#pragma once

#include <chrono>
#include <cstdint>

#include <xcb/xcb.h>
#include <xcb/xtest.h>

namespace querlin::bench {

/// Presses keys as a keyboard would.
class Keys {
public:
    static constexpr std::uint8_t rightControl = 105;

    ~Keys() { xcb_disconnect(connection_); }
    Keys() = default;
    Keys(const Keys&) = delete;
    Keys& operator=(const Keys&) = delete;

    void send(std::uint8_t key, bool down) {
        xcb_test_fake_input(connection_, down ? XCB_KEY_PRESS : XCB_KEY_RELEASE, key, 0, XCB_NONE, 0, 0, 0);
        xcb_flush(connection_);
    }

private:
    xcb_connection_t* connection_ = xcb_connect(nullptr, nullptr);
};

} // namespace querlin::bench
