#pragma once

#include "foundation/MainQueue.h"

#include <memory>

namespace querlin {

/// One thread that runs its work in the order of the calls; whoever hands work over never waits.
///
/// The end of the process doesn't hang on it: on destruction the work handed over so far is given
/// up to two seconds, and then the thread is left behind with what it still holds.
class SerialQueue {
public:
    SerialQueue();
    ~SerialQueue();
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    /// From any thread.
    void run(Work work);

    /// Waits until everything handed over before this call has run, but not longer than `limit`.
    /// True if it has. Not to be called from the queue's own work.
    bool drain(Duration limit);

private:
    struct State;
    std::shared_ptr<State> state_;
};

} // namespace querlin
