#pragma once

#include "foundation/Time.h"

#include <initializer_list>
#include <span>

#include <poll.h>

namespace querlin {

/// Waits until one of the descriptors is ready, or until the deadline. May return early without a reason (a
/// signal, after a minute): callers check again. The result is that of poll(2).
int pollUntil(std::span<pollfd> descriptors, Instant deadline);

/// Wakes a thread that waits in poll(2) or in a library's own loop (eventfd(2)). Rings are not counted:
/// several before the waiter looks are one.
class WakeUp {
public:
    WakeUp();
    ~WakeUp();
    WakeUp(const WakeUp&) = delete;
    WakeUp& operator=(const WakeUp&) = delete;

    /// From any thread, and from a signal handler: async-signal-safe, and errno stays as it was.
    void ring() const noexcept;
    /// Clears the rings so far.
    void clear() const;
    /// Readable from a ring until `clear`.
    int descriptor() const { return descriptor_; }

    /// Waits until a ring, which it clears, or until one of the descriptors (below 0: none) is readable, or
    /// until the deadline; may return early, like pollUntil.
    void wait(std::initializer_list<int> descriptors = {}, Instant deadline = Instant::max()) const;

private:
    const int descriptor_;
};

} // namespace querlin
