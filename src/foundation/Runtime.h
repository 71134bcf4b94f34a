#pragma once

#include "foundation/Clock.h"
#include "foundation/Executor.h"
#include "foundation/MainQueue.h"

namespace querlin {

/// The three services that asynchronous code needs, handed through as one. They outlive whoever
/// was given them.
struct Runtime {
    MainQueue& mainQueue;
    Clock& clock;
    Executor& background;
};

} // namespace querlin
