#pragma once

#include "foundation/WakeUp.h"
#include "platform/x11/KeyTranslation.h"
#include "platform/x11/XcbConnection.h"

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace querlin {

/// The keys of the whole desktop on a connection and a thread of its own, until it goes or the server does.
/// It only listens: raw events come beside the desktop's own handling of a key, also while another program
/// has the keyboard for itself.
class KeyStream {
public:
    using Handler = std::function<void(const KeyEvent&)>;

    /// Whether there is a server that lets us listen.
    static std::expected<std::unique_ptr<XcbConnection>, std::string> connect(const std::string& display);

    /// `handler` and, once, `lost` are called on the stream's thread. The translation is that of the stream
    /// before, if there was one, which has ended by now.
    KeyStream(std::unique_ptr<XcbConnection> connection, std::shared_ptr<KeyTranslation> translation,
              Handler handler, std::function<void()> lost);
    ~KeyStream();
    KeyStream(const KeyStream&) = delete;
    KeyStream& operator=(const KeyStream&) = delete;

    bool isLost() const { return isLost_; }

private:
    void run();
    bool begin();
    void take(const xcb_generic_event_t& event);

    std::unique_ptr<XcbConnection> connection_;
    std::shared_ptr<KeyTranslation> translation_;
    Handler handler_;
    std::function<void()> lost_;
    WakeUp wakeUp_;
    std::uint8_t extension_ = 0;
    std::atomic<bool> isLost_ = false;
    std::atomic<bool> isEnding_ = false;
    std::thread thread_;
};

} // namespace querlin
