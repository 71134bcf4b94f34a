#pragma once

#include "foundation/MainQueue.h"

#include <memory>

namespace querlin {

/// A main queue of its own for programs without a toolkit's event loop. The thread that calls
/// `run` is the main thread.
class RunLoop final : public MainQueue {
public:
    RunLoop();
    ~RunLoop() override;

    /// Serves the queue until `quit`.
    void run();
    /// Ends `run` after the current work; pending work stays queued. From any thread.
    void quit();

    void post(Work work) override;
    Registration after(Duration delay, Work work) override;

private:
    struct State;
    std::shared_ptr<State> state_;
};

} // namespace querlin
