#pragma once

#include "foundation/Registration.h"
#include "foundation/Time.h"

#include <functional>

namespace querlin {

using Work = std::move_only_function<void()>;

/// The main thread's queue. All state of a dictation lives on this one thread, which is its lock.
class MainQueue {
public:
    virtual ~MainQueue() = default;

    /// Runs `work` on the main thread, after everything posted before it and never inside this call.
    /// From any thread.
    virtual void post(Work work) = 0;

    /// Runs `work` once on the main thread when `delay` is over; a delay of 0 or less means the next
    /// turn. Withdrawn when the registration goes. Main thread only.
    virtual Registration after(Duration delay, Work work) = 0;
};

} // namespace querlin
