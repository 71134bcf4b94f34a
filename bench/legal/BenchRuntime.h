#pragma once

#include "foundation/RunLoop.h"
#include "foundation/Runtime.h"
#include "foundation/ThreadPool.h"

namespace querlin::bench {

/// What a corpus is made with; nothing runs on it here.
struct BenchRuntime {
    RunLoop queue;
    SystemClock clock;
    ThreadPool pool{1};

    operator Runtime() { return {.mainQueue = queue, .clock = clock, .background = pool}; }
};

} // namespace querlin::bench
