#include "platform/x11/ClipboardThread.h"

#include "state/DiagnosticsLog.h"

#include <fmt/format.h>

namespace querlin {

namespace {

/// A server that doesn't take what we send must not keep the program from ending.
constexpr Duration longestEnd = std::chrono::seconds(1);

} // namespace

ClipboardThread::ClipboardThread(std::string display) : display_(std::move(display)) {
    thread_ = std::thread([this] { run(); });
}

ClipboardThread::~ClipboardThread() {
    {
        const std::scoped_lock guard(mutex_);
        isEnding_ = true;
    }
    wakeUp_.ring();
    if (ended_.get_future().wait_for(longestEnd) != std::future_status::ready) {
        const std::scoped_lock guard(mutex_);
        if (present_) present_->breakOff();
    }
    thread_.join();
}

void ClipboardThread::capture(Captured captured) {
    {
        const std::scoped_lock guard(mutex_);
        captures_.push_back(std::move(captured));
    }
    wakeUp_.ring();
}

std::future<bool> ClipboardThread::write(SelectionContents contents) {
    Write write{std::move(contents), {}};
    auto done = write.done.get_future();
    {
        const std::scoped_lock guard(mutex_);
        writes_.push_back(std::move(write));
    }
    wakeUp_.ring();
    return done;
}

void ClipboardThread::run() {
    for (;;) {
        doWrites();
        while (doCapture()) {
        }
        const bool goesOn = serve(Instant::max());
        if (session_ && session_->connection().isLost()) disconnect();
        if (goesOn) continue;
        const std::scoped_lock guard(mutex_);
        if (isEnding_) break;
    }
    while (doCapture()) {
    }
    doWrites();
    if (session_) session_->handOver();
    {
        const std::scoped_lock guard(mutex_);
        present_ = nullptr;
    }
    session_.reset();
    ended_.set_value();
}

void ClipboardThread::connect() {
    auto session = ClipboardSession::open(display_);
    if (!session) {
        if (!std::exchange(isFailureNoted_, true))
            DiagnosticsLog::note("clipboard",
                                 fmt::format("Die Zwischenablage ist nicht erreichbar: {}", session.error()));
        return;
    }
    isFailureNoted_ = false;
    session_ = std::move(*session);
    const std::scoped_lock guard(mutex_);
    present_ = &session_->connection();
}

void ClipboardThread::disconnect() {
    DiagnosticsLog::note("clipboard", "Die Verbindung der Zwischenablage zum X-Server ist abgerissen.");
    {
        const std::scoped_lock guard(mutex_);
        present_ = nullptr;
    }
    session_.reset();
}

/// Also called while something is being read.
bool ClipboardThread::serve(Instant deadline) {
    const bool hasCome = session_ && session_->handleEvents();
    if (session_ && session_->connection().isLost()) return false;
    {
        const std::scoped_lock guard(mutex_);
        if (isEnding_) return false;
    }
    if (session_) deadline = std::min(deadline, session_->dropStalled());
    // What has come may be what somebody waits for.
    if (!hasCome) wakeUp_.wait({session_ ? session_->connection().descriptor() : -1}, deadline);
    if (session_) doWrites();
    return true;
}

void ClipboardThread::doWrites() {
    for (;;) {
        std::unique_lock guard(mutex_);
        if (writes_.empty()) return;
        auto write = std::move(writes_.front());
        writes_.pop_front();
        guard.unlock();
        if (!session_) connect();
        write.done.set_value(session_ && session_->write(std::move(write.contents)));
    }
}

bool ClipboardThread::doCapture() {
    std::unique_lock guard(mutex_);
    if (captures_.empty()) return false;
    const auto captured = std::move(captures_.front());
    captures_.pop_front();
    const bool isWanted = !isEnding_;
    guard.unlock();
    if (isWanted && !session_) connect();
    captured(isWanted && session_ ? session_->capture([this](Instant deadline) { return serve(deadline); })
                                  : ClipboardSnapshot());
    return true;
}

} // namespace querlin
