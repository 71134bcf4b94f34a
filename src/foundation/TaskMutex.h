#pragma once

#include "foundation/OneShot.h"
#include "foundation/Task.h"

#include <utility>
#include <vector>

namespace querlin {

/// A mutex for tasks: lets one at a time through a section that may suspend. Main thread only; must outlive
/// its guards.
///
///     const auto turn = co_await mutex.lock();
class TaskMutex {
public:
    class [[nodiscard]] Guard {
    public:
        explicit Guard(TaskMutex& mutex) : mutex_(&mutex) {}
        Guard(Guard&& other) noexcept : mutex_(std::exchange(other.mutex_, nullptr)) {}
        Guard& operator=(Guard&&) = delete;
        Guard(const Guard&) = delete;
        Guard& operator=(const Guard&) = delete;
        ~Guard() {
            if (mutex_) mutex_->unlock();
        }

    private:
        TaskMutex* mutex_;
    };

    explicit TaskMutex(MainQueue& queue) : queue_(queue) {}

    Task<Guard> lock() {
        while (isHeld_) {
            const OneShot<bool> freed(queue_);
            waiting_.push_back(freed.sender());
            co_await freed;
        }
        isHeld_ = true;
        co_return Guard(*this);
    }

private:
    void unlock() {
        isHeld_ = false;
        // All waiters are woken, in order, and check again: one of them may have been abandoned.
        for (const auto& waiter : std::exchange(waiting_, {})) waiter.send(true);
    }

    MainQueue& queue_;
    bool isHeld_ = false;
    std::vector<OneShot<bool>::Sender> waiting_;
};

} // namespace querlin
