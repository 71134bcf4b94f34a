#include "platform/recogniser/helper/HelperServer.h"

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include <sys/socket.h>

namespace querlin {

namespace Protocol = RecogniserProtocol;

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

void HelperServer::serve() {
    Protocol::Parser parser;
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
            if (!handle(**frame)) return;
        }
    }
}

bool HelperServer::handle(const Frame& frame) {
    if ((frame.kind == Kind::open) == (engine_ != nullptr)) return false;
    switch (frame.kind) {
    case Kind::open:
        return open(frame);
    case Kind::prepare:
        return prepare(frame);
    case Kind::begin:
        return begin(frame);
    case Kind::audio:
        return audio(frame);
    case Kind::end:
        return end(frame);
    case Kind::cancel:
        sessions_.erase(frame.session);
        return true;
    case Kind::opened:
    case Kind::alive:
    case Kind::note:
    case Kind::consumed:
    case Kind::piece:
    case Kind::ended:
        return false;
    }
    return false;
}

bool HelperServer::open(const Frame& frame) {
    const auto request = Protocol::openRequest(frame.payload);
    if (!request) return false;
    engine_ = makeEngine_(request->engine, [this](const std::string& text) { tell(Kind::note, 0, text); });
    if (!engine_) return false;
    std::expected<void, std::string> result;
    {
        const Ticker ticker([this] { tell(Kind::alive, 0); });
        result = engine_->open(request->settings);
    }
    return tell(Kind::opened, 0, result ? std::string() : result.error()) && result.has_value();
}

bool HelperServer::prepare(const Frame& frame) {
    const auto words = Protocol::words(frame.payload);
    if (!words) return false;
    engine_->prepare(*words);
    return tell(Kind::alive, 0);
}

bool HelperServer::begin(const Frame& frame) {
    const auto words = Protocol::words(frame.payload);
    if (!words || sessions_.contains(frame.session)) return false;
    auto recognition = engine_->begin(*words);
    if (!recognition) return tell(Kind::ended, frame.session, recognition.error());
    sessions_[frame.session].recognition = std::move(*recognition);
    return tell(Kind::consumed, frame.session, Protocol::payloadOf(std::uint64_t(0)));
}

bool HelperServer::audio(const Frame& frame) {
    const auto samples = Protocol::samples(frame.payload);
    if (!samples) return false;
    const auto found = sessions_.find(frame.session);
    if (found == sessions_.end()) return true; // It failed to begin; the other side knows by now.
    auto& session = found->second;
    session.consumedInSamples += samples->size();
    session.recognition->accept(*samples, sinkOf(frame.session, session));
    return tell(Kind::consumed, frame.session, Protocol::payloadOf(session.consumedInSamples));
}

bool HelperServer::end(const Frame& frame) {
    const auto found = sessions_.find(frame.session);
    if (found == sessions_.end()) return true;
    found->second.recognition->finish(sinkOf(frame.session, found->second));
    sessions_.erase(found);
    return tell(Kind::ended, frame.session);
}

PieceSink HelperServer::sinkOf(std::uint32_t number, Session& session) {
    return [this, number, &session](const Piece& piece) {
        if (!piece.isFinal && piece.text == session.volatileText) return;
        session.volatileText = piece.isFinal ? std::string() : piece.text;
        tell(Kind::piece, number, Protocol::payloadOf(piece));
    };
}

bool HelperServer::tell(Kind kind, std::uint32_t session, std::string_view payload) {
    std::string bytes;
    Protocol::append(bytes, kind, session, payload);
    std::string_view rest = bytes;
    const std::scoped_lock guard(telling_);
    while (isConnected_ && !rest.empty()) {
        const auto count = ::send(socket_, rest.data(), rest.size(), MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR) continue;
        isConnected_ = count > 0;
        if (isConnected_) rest.remove_prefix(static_cast<std::size_t>(count));
    }
    return isConnected_;
}

} // namespace querlin
