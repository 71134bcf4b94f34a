#pragma once

#include "foundation/Executor.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace querlin {

/// A few threads for background work.
class ThreadPool final : public Executor {
public:
    explicit ThreadPool(unsigned threadCount);
    ~ThreadPool() override { finish(); }
    ThreadPool(const ThreadPool&) = delete;
    ThreadPool& operator=(const ThreadPool&) = delete;

    void run(Work work) override;

    /// Drops work that has not begun, waits for running work, and accepts none from here on. Called by the
    /// destructor; call it earlier if objects that the work uses are destroyed before the pool.
    void finish();

private:
    void serve();

    std::mutex mutex_;
    std::condition_variable wakeUp_;
    std::deque<Work> waiting_;
    bool ending_ = false;
    std::vector<std::jthread> threads_;
};

} // namespace querlin
