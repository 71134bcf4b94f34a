#pragma once

#include "foundation/Time.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace querlin {

/// Ends the wait of a thread for its connection.
class WakeUp {
public:
    WakeUp() : descriptor_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}
    ~WakeUp() { ::close(descriptor_); }
    WakeUp(const WakeUp&) = delete;
    WakeUp& operator=(const WakeUp&) = delete;

    /// From any thread.
    void ring() const { (void)::eventfd_write(descriptor_, 1); }

    /// Waits until there is something at `descriptor` (below 0: at none), or it is rung, or until the
    /// deadline.
    void wait(int descriptor, Instant deadline = Instant::max()) const {
        std::array<pollfd, 2> waiting = {{{descriptor_, POLLIN, 0}, {descriptor, POLLIN, 0}}};
        int longest = -1;
        if (deadline != Instant::max()) {
            const auto left =
                std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
            longest = static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 60'000));
        }
        ::poll(waiting.data(), waiting.size(), longest);
        eventfd_t rung = 0;
        if (waiting.front().revents != 0) (void)::eventfd_read(descriptor_, &rung);
    }

private:
    int descriptor_;
};

} // namespace querlin
