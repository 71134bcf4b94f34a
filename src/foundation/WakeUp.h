#pragma once

#include "foundation/Time.h"

#include <initializer_list>
#include <span>

#include <poll.h>

namespace querlin {

/// Waits until one of the descriptors is ready, or until the deadline. It may also return earlier without a
/// reason (a signal, after a minute): callers look again. The result is poll(2)'s.
int pollUntil(std::span<pollfd> descriptors, Instant deadline);

/// Ends the wait of a thread that sits in poll(2) or in a library's own loop (eventfd(2)). Rings are not
/// counted: several before the waiter looks are one.
class WakeUp {
public:
    WakeUp();
    ~WakeUp();
    WakeUp(const WakeUp&) = delete;
    WakeUp& operator=(const WakeUp&) = delete;

    /// From any thread, and from a signal handler: async-signal-safe, and errno stays as it was.
    void ring() const noexcept;
    /// Forgets the rings so far.
    void clear() const;
    /// Readable from a ring until it is cleared.
    int descriptor() const { return descriptor_; }

    /// Waits until a ring, which it clears, or until one of the descriptors (below 0: none) is readable, or
    /// until the deadline; like pollUntil possibly less.
    void wait(std::initializer_list<int> descriptors = {}, Instant deadline = Instant::max()) const;

private:
    const int descriptor_;
};

} // namespace querlin
