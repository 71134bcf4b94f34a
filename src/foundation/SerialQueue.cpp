#include "foundation/SerialQueue.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace querlin {

// Shared with the thread, which may outlive the queue.
struct SerialQueue::State {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Work> waiting;
    std::uint64_t handedOver = 0;
    std::uint64_t finished = 0;
    bool ending = false;

    void serve() {
        std::unique_lock guard(mutex);
        while (true) {
            changed.wait(guard, [this] { return ending || !waiting.empty(); });
            if (waiting.empty()) return;
            {
                Work work = std::move(waiting.front());
                waiting.pop_front();
                guard.unlock();
                work();
            }
            guard.lock();
            ++finished;
            changed.notify_all();
        }
    }
};

SerialQueue::SerialQueue() : state_(std::make_shared<State>()) {
    std::thread([state = state_] { state->serve(); }).detach();
}

SerialQueue::~SerialQueue() {
    drain(std::chrono::seconds(2));
    {
        const std::scoped_lock guard(state_->mutex);
        state_->ending = true;
    }
    state_->changed.notify_all();
}

void SerialQueue::run(Work work) {
    {
        const std::scoped_lock guard(state_->mutex);
        state_->waiting.push_back(std::move(work));
        ++state_->handedOver;
    }
    state_->changed.notify_all();
}

bool SerialQueue::drain(Duration limit) {
    std::unique_lock guard(state_->mutex);
    const auto target = state_->handedOver;
    return state_->changed.wait_for(guard, limit, [&] { return state_->finished >= target; });
}

} // namespace querlin
