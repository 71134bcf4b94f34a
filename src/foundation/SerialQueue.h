#pragma once

#include "foundation/Executor.h"

#include <memory>

namespace querlin {

/// One thread that runs work in the order of the calls; handing work over never blocks.
///
/// It never holds up the end of the process: the destructor gives pending work up to two seconds, then
/// abandons the thread and what it still holds.
class SerialQueue final : public Executor {
public:
    SerialQueue();
    ~SerialQueue() override;
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    /// From any thread.
    void run(Work work) override;

    /// Waits until everything handed over before this call has run, but not longer than `limit`.
    /// True if it has. Not to be called from the queue's own work.
    bool drain(Duration limit);

private:
    struct State;
    std::shared_ptr<State> state_;
};

} // namespace querlin
