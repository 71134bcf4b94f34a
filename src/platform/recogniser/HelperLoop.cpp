#include "platform/recogniser/HelperLoop.h"

#include "state/DiagnosticsLog.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

#include <fmt/format.h>
#include <sys/socket.h>

namespace querlin {

namespace Protocol = RecogniserProtocol;
using Kind = Protocol::Kind;

namespace {

constexpr std::size_t fullOutboxInBytes = 64U << 10U;
constexpr int mostDeathsWhileOpening = 2;
/// A helper that lived for less than this isn't started again without need.
constexpr Duration longLife = std::chrono::seconds(10);

constexpr auto diesWhileOpening = "Der Spracherkenner stürzt beim Laden des Modells ab.";
constexpr auto diedTwice = "Der Spracherkenner ist zweimal abgestürzt.";
constexpr auto isQuit = "Die Spracherkennung wurde beendet.";

Instant now() { return std::chrono::steady_clock::now(); }

/// Signals are for the main thread.
void blockSignals() {
    sigset_t all{};
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

} // namespace

void HelperLoop::run() {
    blockSignals();
    while (!isQuitting_) {
        fillOutbox();
        write();
        wait();
        if (helper_) read();
        for (auto& order : mailbox_->takeAll()) obey(std::move(order));
        giveUpIfSilent();
    }
    fail(isQuit);
    stop();
}

// Orders

void HelperLoop::obey(RecogniserOrder order) {
    std::visit([&](auto& what) { obey(order.session, what); }, order.what);
}

void HelperLoop::obey(std::uint32_t /*number*/, RecogniserOrder::Prepare& order) {
    preparedWords_ = std::move(order.words);
    isPreparing_ = true;
    if (state_ == State::idle) start();
}

void HelperLoop::obey(std::uint32_t number, RecogniserOrder::Begin& order) {
    preparedWords_ = order.words;
    isPreparing_ = false;
    sessions_.try_emplace(number, number, std::move(order.words), std::move(order.observer),
                          std::move(order.isSilent), setup_.makeConverter);
    if (state_ == State::idle) start();
}

void HelperLoop::obey(std::uint32_t number, RecogniserOrder::Sound& order) {
    const auto found = sessions_.find(number);
    if (found == sessions_.end()) return;
    auto result = found->second.add(order.format, order.samples);
    if (result) return;
    Protocol::append(outbox_, Kind::cancel, number);
    end(found, std::move(result));
}

void HelperLoop::obey(std::uint32_t number, RecogniserOrder::Finish& /*order*/) {
    if (const auto found = sessions_.find(number); found != sessions_.end()) found->second.finish();
}

void HelperLoop::obey(std::uint32_t number, RecogniserOrder::Cancel& /*order*/) {
    const auto found = sessions_.find(number);
    if (found == sessions_.end()) return;
    if (found->second.isBegun()) Protocol::append(outbox_, Kind::cancel, number);
    end(found, {});
}

void HelperLoop::obey(std::uint32_t /*number*/, RecogniserOrder::Quit& /*order*/) { isQuitting_ = true; }

// The helper's life

void HelperLoop::start() {
    stop();
    auto helper = HelperProcess::start(setup_.program);
    if (!helper) {
        opened(helper.error());
        return;
    }
    helper_ = std::move(*helper);
    *helperId_ = helper_->id();
    state_ = State::opening;
    startedAt_ = lastSign_ = now();
    Protocol::append(outbox_, Kind::open, 0, Protocol::payloadOf(setup_.model));
}

void HelperLoop::stop() {
    *helperId_ = -1;
    helper_.reset();
    state_ = State::idle;
    inbox_ = {};
    outbox_.clear();
}

void HelperLoop::opened(const std::string& error) {
    deathsWhileOpening_ = 0;
    if (error.empty()) {
        state_ = State::ready;
    } else {
        DiagnosticsLog::note("speech", error);
        stop();
        fail(error);
    }
    if (setup_.onOpened)
        setup_.onOpened(error.empty() ? std::expected<void, std::string>() : std::unexpected(error));
}

void HelperLoop::died() {
    const bool wasOpening = state_ == State::opening;
    const bool isWorthIt = now() - startedAt_ >= longLife;
    DiagnosticsLog::note("speech", "Der Spracherkenner ist abgestürzt.");
    stop();
    if (wasOpening) {
        if (++deathsWhileOpening_ < mostDeathsWhileOpening) {
            start();
        } else {
            opened(diesWhileOpening);
        }
        return;
    }
    for (auto next = sessions_.begin(); next != sessions_.end();) {
        const auto session = next++;
        if (session->second.isBegun() && !session->second.beginAgain())
            end(session, std::unexpected(diedTwice));
    }
    isPreparing_ = sessions_.empty();
    if (isWorthIt || !sessions_.empty()) start();
}

void HelperLoop::giveUpIfSilent() {
    if (!isWaiting()) lastSign_ = now();
    if (now() - lastSign_ < setup_.longestSilence) return;
    const auto error = fmt::format("Der Spracherkenner antwortet seit {:.0f} Sekunden nicht mehr.",
                                   inSeconds(setup_.longestSilence));
    if (state_ == State::opening) {
        opened(error);
        return;
    }
    DiagnosticsLog::note("speech", error);
    stop();
    fail(error);
}

// Frames

/// Sessions take turns.
void HelperLoop::fillOutbox() {
    if (state_ != State::ready) return;
    if (std::exchange(isPreparing_, false))
        Protocol::append(outbox_, Kind::prepare, 0, Protocol::payloadOf(preparedWords_));
    std::size_t idle = 0;
    while (idle < sessions_.size() && outbox_.size() < fullOutboxInBytes) {
        auto next = sessions_.upper_bound(lastServed_);
        if (next == sessions_.end()) next = sessions_.begin();
        lastServed_ = next->first;
        idle = next->second.appendNextFrame(outbox_) ? 0 : idle + 1;
    }
}

/// A failure shows when reading.
void HelperLoop::write() {
    if (!helper_ || outbox_.empty()) return;
    const auto count = ::send(helper_->socket(), outbox_.data(), outbox_.size(), MSG_NOSIGNAL);
    if (count > 0) outbox_.erase(0, static_cast<std::size_t>(count));
}

void HelperLoop::read() {
    const auto room = inbox_.room();
    const auto count = ::recv(helper_->socket(), room.data(), room.size(), 0);
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
    if (count <= 0) {
        died();
        return;
    }
    inbox_.received(static_cast<std::size_t>(count));
    lastSign_ = now();
    const auto current = helper_->id();
    while (helper_ && helper_->id() == current) {
        const auto frame = inbox_.next();
        if (frame && !*frame) return;
        if (!frame || !handle(**frame)) {
            died();
            return;
        }
    }
}

bool HelperLoop::handle(const Protocol::Frame& frame) {
    if ((frame.kind == Kind::opened) != (state_ == State::opening) && frame.kind != Kind::alive &&
        frame.kind != Kind::note)
        return false;
    const auto session = sessions_.find(frame.session);
    const bool isOurs = session != sessions_.end();
    switch (frame.kind) {
    case Kind::opened:
        opened(frame.payload);
        return true;
    case Kind::alive:
        return true;
    case Kind::note:
        DiagnosticsLog::note("speech", frame.payload);
        return true;
    case Kind::consumed: {
        const auto count = Protocol::count(frame.payload);
        return count && (!isOurs || session->second.consumed(*count));
    }
    case Kind::piece: {
        const auto piece = Protocol::piece(frame.payload);
        return piece && (!isOurs || session->second.piece(*piece));
    }
    case Kind::ended:
        if (!isOurs) return true;
        if (frame.payload.empty()) {
            end(session, {});
        } else {
            end(session, std::unexpected(frame.payload));
        }
        return true;
    case Kind::open:
    case Kind::prepare:
    case Kind::begin:
    case Kind::audio:
    case Kind::end:
    case Kind::cancel:
        break;
    }
    return false;
}

/// For an order, for the helper, or until it has been silent for too long.
void HelperLoop::wait() {
    std::array<pollfd, 2> descriptors{};
    descriptors[0] = {.fd = mailbox_->descriptor(), .events = POLLIN, .revents = 0};
    descriptors[1] = {.fd = helper_ ? helper_->socket() : -1, .events = POLLIN, .revents = 0};
    if (!outbox_.empty()) descriptors[1].events |= POLLOUT;
    pollUntil(descriptors, isWaiting() ? lastSign_ + setup_.longestSilence : Instant::max());
}

// Sessions

bool HelperLoop::isWaiting() const {
    return state_ == State::opening ||
           std::ranges::any_of(sessions_, [](const auto& numbered) { return numbered.second.isWaiting(); });
}

void HelperLoop::end(Sessions::iterator session, std::expected<void, std::string> result) {
    auto ended = sessions_.extract(session);
    ended.mapped().end(std::move(result));
}

void HelperLoop::fail(const std::string& error) {
    while (!sessions_.empty()) end(sessions_.begin(), std::unexpected(error));
}

} // namespace querlin
