#include "platform/x11/X11FocusReturn.h"

#include "state/DiagnosticsLog.h"

#include <utility>

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr Duration longestWait = std::chrono::seconds(1);
/// What the server is given for one answer.
constexpr Duration longestAnswer = std::chrono::seconds(1);
constexpr Duration betweenAttempts = std::chrono::seconds(10);
/// Where no manager tells of changes.
constexpr Duration betweenLooks = std::chrono::milliseconds(250);

Instant in(Duration span) { return std::chrono::steady_clock::now() + span; }

} // namespace

X11FocusReturn::X11FocusReturn(MainQueue& queue, std::string display) :
    queue_(queue), display_(std::move(display)), thread_([this] { run(); }) {}

X11FocusReturn::~X11FocusReturn() {
    isEnding_ = true;
    wakeUp_.ring();
    thread_.join();
}

Task<bool> X11FocusReturn::giveBack() {
    const OneShot<bool> answer(queue_);
    // By ourselves, whatever becomes of the thread's server.
    const auto timeout = queue_.after(longestWait, [sender = answer.sender()] { sender.send(false); });
    {
        const std::scoped_lock guard(lock_);
        wishes_.push_back(FocusWish{answer.sender(), in(longestWait)});
    }
    wakeUp_.ring();
    const bool isGivenBack = co_await answer;
    co_return isGivenBack;
}

// The thread

void X11FocusReturn::run() {
    bool isToldOf = false;
    while (!isEnding_) {
        auto connection = XcbConnection::open(display_, longestAnswer);
        if (connection) {
            FocusHistory history(std::move(*connection));
            serve(history);
        } else if (!std::exchange(isToldOf, true)) {
            DiagnosticsLog::note(
                "focus",
                fmt::format("Welches Fenster vorn ist, lässt sich nicht verfolgen: {}", connection.error()));
        }
        const auto next = in(betweenAttempts);
        while (!isEnding_ && std::chrono::steady_clock::now() < next) {
            refuseWishes();
            wakeUp_.wait({}, next);
        }
    }
    refuseWishes();
}

void X11FocusReturn::serve(FocusHistory& history) {
    while (!isEnding_) {
        history.add(takeWishes());
        history.serve();
        if (history.isLost()) {
            DiagnosticsLog::note("focus", "Die Verbindung zum X-Server ist abgebrochen.");
            return;
        }
        wakeUp_.wait({history.descriptor()}, history.mustLookByItself() ? in(betweenLooks) : Instant::max());
    }
}

void X11FocusReturn::refuseWishes() {
    for (const auto& wish : takeWishes()) wish.answer.send(false);
}

std::vector<FocusWish> X11FocusReturn::takeWishes() {
    const std::scoped_lock guard(lock_);
    return std::exchange(wishes_, {});
}

} // namespace querlin
