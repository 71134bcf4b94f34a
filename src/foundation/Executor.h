#pragma once

#include "foundation/MainQueue.h"

namespace querlin {

/// Runs work that must not block the main thread.
class Executor {
public:
    virtual ~Executor() = default;
    /// Runs `work` on some other thread, at some time. From any thread.
    virtual void run(Work work) = 0;
};

} // namespace querlin
