#pragma once

#include "foundation/Executor.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace querlin {

/// A few threads for background work. On destruction work that has not begun is dropped, and work
/// that runs is waited for.
class ThreadPool final : public Executor {
public:
    explicit ThreadPool(unsigned threadCount);
    ~ThreadPool() override;
    ThreadPool(const ThreadPool&) = delete;
    ThreadPool& operator=(const ThreadPool&) = delete;

    void run(Work work) override;

private:
    void serve();

    std::mutex mutex_;
    std::condition_variable wakeUp_;
    std::deque<Work> waiting_;
    bool ending_ = false;
    std::vector<std::jthread> threads_;
};

} // namespace querlin
