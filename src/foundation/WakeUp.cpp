#include "foundation/WakeUp.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <system_error>
#include <vector>

#include <sys/eventfd.h>
#include <unistd.h>

namespace querlin {

namespace {

int newDescriptor() {
    const int descriptor = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (descriptor < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
    return descriptor;
}

} // namespace

int pollUntil(std::span<pollfd> descriptors, Instant deadline) {
    int timeout = -1;
    if (deadline != Instant::max()) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        timeout = static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 60'000));
    }
    return ::poll(descriptors.data(), descriptors.size(), timeout);
}

WakeUp::WakeUp() : descriptor_(newDescriptor()) {}

WakeUp::~WakeUp() { ::close(descriptor_); }

void WakeUp::ring() const noexcept {
    const int before = errno;
    const std::uint64_t once = 1;
    [[maybe_unused]] const auto written = ::write(descriptor_, &once, sizeof once);
    errno = before;
}

void WakeUp::clear() const {
    std::uint64_t rings = 0;
    [[maybe_unused]] const auto read = ::read(descriptor_, &rings, sizeof rings);
}

void WakeUp::wait(std::initializer_list<int> descriptors, Instant deadline) const {
    std::vector<pollfd> waiting = {{descriptor_, POLLIN, 0}};
    for (const int descriptor : descriptors) waiting.push_back({descriptor, POLLIN, 0});
    pollUntil(waiting, deadline);
    if (waiting.front().revents != 0) clear();
}

} // namespace querlin
