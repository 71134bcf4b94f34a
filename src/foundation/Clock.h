#pragma once

#include "foundation/Time.h"

namespace querlin {

/// The current time. A port, so that tests move time by hand. Callable from any thread.
class Clock {
public:
    virtual ~Clock() = default;
    /// Calendar time; may jump when the user or the network sets it.
    virtual Date now() const = 0;
    /// Monotonic time; only the difference of two readings is meaningful.
    virtual Instant instant() const = 0;
};

/// The machine's own clocks.
class SystemClock final : public Clock {
public:
    Date now() const override { return std::chrono::system_clock::now(); }
    Instant instant() const override { return std::chrono::steady_clock::now(); }
};

} // namespace querlin
