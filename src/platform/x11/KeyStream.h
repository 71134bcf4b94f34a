#pragma once

#include "foundation/WakeUp.h"
#include "platform/x11/XcbConnection.h"

#include <array>
#include <atomic>
#include <functional>
#include <string>
#include <thread>

namespace querlin {

/// The raw keys of the whole desktop, on a thread and a connection of its own, which is made again when it
/// breaks. Raw events come beside the desktop's own handling of a key and can't hold it up; they also come
/// while another program has grabbed the keyboard.
class KeyStream {
public:
    /// All are called on the stream's thread. `begun` comes before the first key of a connection, with the
    /// keys that are down; `lost` after the last one, unless the stream itself ends.
    struct Listener {
        std::function<void(const std::array<std::uint8_t, 32>& held)> begun;
        std::function<void(std::uint8_t keyCode, bool isDown)> key;
        std::function<void()> lost;
    };

    /// `display` names the server (":1"); empty means that of the environment. Returns at once.
    KeyStream(std::string display, Listener listener);
    ~KeyStream();
    KeyStream(const KeyStream&) = delete;
    KeyStream& operator=(const KeyStream&) = delete;

    /// Whether the server of this connection reports raw keys (XInput 2.1).
    static bool isOfferedBy(XcbConnection& connection);

private:
    void run();
    std::expected<std::unique_ptr<XcbConnection>, std::string> connect() const;
    bool begin(XcbConnection& connection);
    void follow(XcbConnection& connection);
    void take(const xcb_generic_event_t& event, std::uint8_t extension) const;

    const std::string display_;
    const Listener listener_;
    WakeUp wakeUp_;
    std::atomic<bool> isEnding_ = false;
    std::thread thread_;
};

} // namespace querlin
