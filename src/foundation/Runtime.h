#pragma once

#include "foundation/Clock.h"
#include "foundation/Executor.h"
#include "foundation/MainQueue.h"

namespace querlin {

/// The three services that asynchronous code needs, passed around as one. They outlive all their users.
struct Runtime {
    MainQueue& mainQueue;
    Clock& clock;
    Executor& background;
};

} // namespace querlin
