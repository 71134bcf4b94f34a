#pragma once

#include "foundation/MainQueue.h"

#include <memory>

namespace querlin {

/// Calls `tick` on the main thread once per `interval`, for the first time after one interval, until
/// it is destroyed. A tick may destroy its own timer. Main thread only.
class RepeatingTimer {
public:
    RepeatingTimer(MainQueue& queue, Duration interval, Work tick);

private:
    struct State;
    static void schedule(const std::shared_ptr<State>& state);

    std::shared_ptr<State> state_;
};

} // namespace querlin
