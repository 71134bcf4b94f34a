#include "platform/helper/HelperLoop.h"

#include "foundation/WakeUp.h"
#include "state/DiagnosticsLog.h"

#include <array>
#include <cerrno>
#include <csignal>

#include <fmt/format.h>
#include <sys/socket.h>

namespace querlin {

namespace {

constexpr std::size_t fullOutboxInBytes = 64U << 10U;
constexpr int mostDeathsWhileOpening = 2;
/// A helper that lived for less than this isn't started again without need.
constexpr Duration longLife = std::chrono::seconds(10);

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
        for (auto& order : orders_->takeAll()) {
            if (order() && state_ == State::idle) start();
        }
        giveUpIfSilent();
    }
    client_->fail(said(" wurde beendet."));
    stop();
}

// The helper's life

void HelperLoop::start() {
    stop();
    auto helper = HelperProcess::start(setup_.program);
    if (!helper) {
        opened(said(" lässt sich nicht starten: ") + helper.error());
        return;
    }
    helper_ = std::move(*helper);
    *helperId_ = helper_->id();
    state_ = State::opening;
    startedAt_ = lastSign_ = now();
    HelperProtocol::append(outbox_, HelperProtocol::Kind::open, 0, setup_.openRequest);
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
        client_->opened({});
        return;
    }
    DiagnosticsLog::note(setup_.logCategory, error);
    stop();
    client_->fail(error);
    client_->opened(std::unexpected(error));
}

void HelperLoop::died() {
    const bool wasOpening = state_ == State::opening;
    const bool hasLivedLong = now() - startedAt_ >= longLife;
    DiagnosticsLog::note(setup_.logCategory, said(" ist abgestürzt."));
    stop();
    if (wasOpening) {
        if (++deathsWhileOpening_ < mostDeathsWhileOpening) {
            start();
        } else {
            opened(said(" stürzt beim Laden des Modells ab."));
        }
        return;
    }
    if (client_->beginAgain() || hasLivedLong) start();
}

void HelperLoop::giveUpIfSilent() {
    if (!isWaiting()) lastSign_ = now();
    if (now() - lastSign_ < setup_.longestSilence) return;
    const auto error =
        said(fmt::format(" antwortet seit {:.0f} Sekunden nicht mehr.", inSeconds(setup_.longestSilence)));
    if (state_ == State::opening) {
        opened(error);
        return;
    }
    DiagnosticsLog::note(setup_.logCategory, error);
    stop();
    client_->fail(error);
}

// Frames

void HelperLoop::fillOutbox() {
    if (state_ != State::ready) return;
    while (outbox_.size() < fullOutboxInBytes && client_->appendNextFrame(outbox_)) {
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

/// False if it is malformed.
bool HelperLoop::handle(const HelperProtocol::Frame& frame) {
    switch (frame.kind) {
    case HelperProtocol::Kind::opened:
        if (state_ != State::opening) return false;
        opened(frame.payload);
        return true;
    case HelperProtocol::Kind::alive:
        return true;
    case HelperProtocol::Kind::note:
        DiagnosticsLog::note(setup_.logCategory, frame.payload);
        return true;
    default:
        return state_ == State::ready && client_->handle(frame);
    }
}

/// For an order, for the helper, or until it has been silent for too long.
void HelperLoop::wait() {
    std::array<pollfd, 2> descriptors{};
    descriptors[0] = {.fd = orders_->descriptor(), .events = POLLIN, .revents = 0};
    descriptors[1] = {.fd = helper_ ? helper_->socket() : -1, .events = POLLIN, .revents = 0};
    if (!outbox_.empty()) descriptors[1].events |= POLLOUT;
    pollUntil(descriptors, isWaiting() ? lastSign_ + setup_.longestSilence : Instant::max());
}

} // namespace querlin
