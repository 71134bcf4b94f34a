#include "foundation/RunLoop.h"

#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>

namespace querlin {

struct RunLoop::State {
    using TimerKey = std::pair<Instant, std::uint64_t>;

    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Work> posted;
    std::map<TimerKey, Work> timers;
    std::uint64_t lastTimer = 0;
    bool quitting = false;

    /// The next piece of work, waiting for it if needed; empty when the loop is to end.
    Work next() {
        std::unique_lock guard(mutex);
        while (!quitting) {
            const auto now = std::chrono::steady_clock::now();
            if (!timers.empty() && timers.begin()->first.first <= now) {
                Work work = std::move(timers.begin()->second);
                timers.erase(timers.begin());
                return work;
            }
            if (!posted.empty()) {
                Work work = std::move(posted.front());
                posted.pop_front();
                return work;
            }
            if (timers.empty()) {
                changed.wait(guard);
            } else {
                changed.wait_until(guard, timers.begin()->first.first);
            }
        }
        return {};
    }
};

RunLoop::RunLoop() : state_(std::make_shared<State>()) {}
RunLoop::~RunLoop() = default;

void RunLoop::run() {
    while (Work work = state_->next()) work();
    const std::scoped_lock guard(state_->mutex);
    state_->quitting = false;
}

void RunLoop::quit() {
    {
        const std::scoped_lock guard(state_->mutex);
        state_->quitting = true;
    }
    state_->changed.notify_all();
}

void RunLoop::post(Work work) {
    {
        const std::scoped_lock guard(state_->mutex);
        state_->posted.push_back(std::move(work));
    }
    state_->changed.notify_all();
}

Registration RunLoop::after(Duration delay, Work work) {
    const std::scoped_lock guard(state_->mutex);
    const State::TimerKey key{std::chrono::steady_clock::now() + delay, ++state_->lastTimer};
    state_->timers.emplace(key, std::move(work));
    state_->changed.notify_all();
    return Registration([weak = std::weak_ptr(state_), key] {
        const auto state = weak.lock();
        if (!state) return;
        Work withdrawn; // Destroyed after the lock has been released: its captures may call back.
        const std::scoped_lock inner(state->mutex);
        if (const auto found = state->timers.find(key); found != state->timers.end()) {
            withdrawn = std::move(found->second);
            state->timers.erase(found);
        }
    });
}

} // namespace querlin
