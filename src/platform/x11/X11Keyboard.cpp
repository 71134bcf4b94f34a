#include "platform/x11/X11Keyboard.h"

#include "foundation/Lifetime.h"
#include "platform/x11/KeyStream.h"
#include "state/DiagnosticsLog.h"

#include <optional>

#include <fmt/format.h>
#include <xcb/xtest.h>

namespace querlin {

namespace {

bool isWanted(const KeyEvent& event, std::uint32_t mask) {
    return (KeyEventType::maskBit(event.type) & mask) != 0;
}

/// A stream, and what it has posted: that comes to nothing once the stream is gone. Main thread.
class PostedStream {
public:
    PostedStream(MainQueue& queue, std::unique_ptr<XcbConnection> connection,
                 std::shared_ptr<KeyTranslation> translation, std::uint32_t mask,
                 const KeyboardEvents::Handler& handler, const std::function<void()>& lost) {
        auto post = lifetime_.onMain(queue, handler);
        auto postWanted = [mask, post](const KeyEvent& event) {
            if (isWanted(event, mask)) post(event);
        };
        stream_.emplace(std::move(connection), std::move(translation), std::move(postWanted),
                        lifetime_.onMain(queue, lost));
    }

    bool isLost() const { return stream_->isLost(); }

private:
    Lifetime lifetime_;
    std::optional<KeyStream> stream_; ///< the thread ends first
};

class X11Tap final : public EventTap {
public:
    X11Tap(MainQueue& queue, std::string display, std::uint32_t mask, KeyboardEvents::Handler handler,
           std::unique_ptr<XcbConnection> connection) :
        queue_(queue),
        display_(std::move(display)),
        mask_(mask),
        handler_(std::move(handler)),
        connection_(std::move(connection)) {}

    void enable(bool enabled) override {
        if (enabled == isEnabled()) return;
        stream_.reset();
        if (!enabled || !connect()) return;
        const auto tellLost = [this] {
            DiagnosticsLog::note("hotkey", "Die Verbindung zum X-Server ist abgerissen.");
            const auto handler = handler_; // It may end this tap.
            handler({KeyEventType::disabledByTimeout, 0, 0});
        };
        stream_ = std::make_unique<PostedStream>(queue_, std::move(connection_), translation_, mask_,
                                                 handler_, tellLost);
    }
    bool isEnabled() const override { return stream_ && !stream_->isLost(); }

private:
    bool connect() {
        if (connection_ && connection_->drain()) return true;
        auto connection = KeyStream::connect(display_);
        if (connection) {
            connection_ = std::move(*connection);
        } else if (!std::exchange(isFailureNoted_, true)) {
            DiagnosticsLog::note("hotkey",
                                 fmt::format("Die Tastatur ist nicht zu hören: {}", connection.error()));
        }
        if (connection) isFailureNoted_ = false;
        return connection.has_value();
    }

    MainQueue& queue_;
    const std::string display_;
    const std::uint32_t mask_;
    KeyboardEvents::Handler handler_;
    std::unique_ptr<XcbConnection> connection_; ///< for the next stream
    bool isFailureNoted_ = false;
    std::shared_ptr<KeyTranslation> translation_ = std::make_shared<KeyTranslation>();
    std::unique_ptr<PostedStream> stream_;
};

} // namespace

std::unique_ptr<EventTap> X11Keyboard::createTap(std::uint32_t eventMask, Handler handler) {
    auto connection = KeyStream::connect(display_);
    if (!connection) {
        DiagnosticsLog::note("hotkey",
                             fmt::format("Die Tastatur ist nicht zu hören: {}", connection.error()));
        return nullptr;
    }
    return std::make_unique<X11Tap>(queue_, display_, eventMask, std::move(handler), std::move(*connection));
}

Registration X11Keyboard::addMonitor(Handler handler) {
    auto connection = KeyStream::connect(display_);
    if (!connection) return {};
    const auto noteLoss = [] {
        DiagnosticsLog::note("hotkey", "Die Gegenprobe der Tastatur hört nichts mehr: keine Verbindung.");
    };
    auto stream =
        std::make_unique<PostedStream>(queue_, std::move(*connection), std::make_shared<KeyTranslation>(),
                                       KeyEventType::maskBit(KeyEventType::flagsChanged), handler, noteLoss);
    return Registration([stream = std::move(stream)]() mutable { stream.reset(); });
}

bool X11Keyboard::isAvailable() {
    const std::scoped_lock guard(mutex_);
    if (probe_ && probe_->drain()) return true;
    probe_.reset();
    auto connection = KeyStream::connect(display_);
    if (!connection || !(*connection)->hasExtension(xcb_test_id)) return false;
    probe_ = std::move(*connection);
    return true;
}

} // namespace querlin
