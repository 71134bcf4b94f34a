#include "platform/helper/server/HelperServer.h"

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <thread>

#include <sys/socket.h>

namespace querlin {

namespace {

constexpr auto signOfLife = std::chrono::seconds(1);
constexpr int mostSignsWhileOpening = 60;

/// Calls again and again while something takes long.
class Ticker {
public:
    explicit Ticker(std::function<void()> tick) :
        thread_([tick = std::move(tick), this](const std::stop_token& end) {
            std::unique_lock guard(mutex_);
            for (int i = 0; i < mostSignsWhileOpening; ++i) {
                if (wakeUp_.wait_for(guard, end, signOfLife, [&end] { return end.stop_requested(); })) return;
                tick();
            }
        }) {}

private:
    std::mutex mutex_;
    std::condition_variable_any wakeUp_;
    std::jthread thread_;
};

} // namespace

void HelperServer::serve(HelperService& service) {
    HelperProtocol::Parser parser;
    while (isConnected_) {
        const auto room = parser.room();
        const auto count = ::recv(socket_, room.data(), room.size(), 0);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return;
        parser.received(static_cast<std::size_t>(count));
        for (;;) {
            const auto frame = parser.next();
            if (!frame) return;
            if (!*frame) break;
            const bool isFine = isOpen_ ? service.handle(**frame) : open(service, **frame);
            if (!isFine) return;
        }
    }
}

bool HelperServer::open(HelperService& service, const HelperProtocol::Frame& frame) {
    if (frame.kind != HelperProtocol::Kind::open) return false;
    std::expected<void, std::string> result;
    {
        const Ticker ticker([this] { send(HelperProtocol::Kind::alive, 0); });
        result = service.open(frame.payload);
    }
    isOpen_ = result.has_value();
    return send(HelperProtocol::Kind::opened, 0, result ? std::string() : result.error()) && isOpen_;
}

bool HelperServer::send(std::uint8_t kind, std::uint32_t session, std::string_view payload) {
    std::string bytes;
    HelperProtocol::append(bytes, kind, session, payload);
    std::string_view rest = bytes;
    const std::scoped_lock guard(sending_);
    while (isConnected_ && !rest.empty()) {
        const auto count = ::send(socket_, rest.data(), rest.size(), MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR) continue;
        isConnected_ = count > 0;
        if (isConnected_) rest.remove_prefix(static_cast<std::size_t>(count));
    }
    return isConnected_;
}

} // namespace querlin
