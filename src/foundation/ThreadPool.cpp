#include "foundation/ThreadPool.h"

#include <algorithm>

namespace querlin {

ThreadPool::ThreadPool(unsigned threadCount) {
    threads_.reserve(std::max(threadCount, 1U));
    for (unsigned i = 0; i < std::max(threadCount, 1U); ++i) threads_.emplace_back([this] { serve(); });
}

void ThreadPool::finish() {
    std::deque<Work> dropped;
    {
        const std::scoped_lock guard(mutex_);
        ending_ = true;
        dropped.swap(waiting_);
    }
    wakeUp_.notify_all();
    threads_.clear();
}

void ThreadPool::run(Work work) {
    {
        const std::scoped_lock guard(mutex_);
        if (ending_) return;
        waiting_.push_back(std::move(work));
    }
    wakeUp_.notify_one();
}

void ThreadPool::serve() {
    while (true) {
        Work work;
        {
            std::unique_lock guard(mutex_);
            wakeUp_.wait(guard, [this] { return ending_ || !waiting_.empty(); });
            if (ending_) return;
            work = std::move(waiting_.front());
            waiting_.pop_front();
        }
        work();
    }
}

} // namespace querlin
