#include "foundation/NoCoreDumps.h"

#include <algorithm>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace querlin {

void preventCoreDumps() {
    // To a file the kernel writes nothing so small; to a program it gives a core of any size, only not with a
    // limit of exactly one byte (fs/coredump.c).
    rlimit limit{};
    ::getrlimit(RLIMIT_CORE, &limit);
    limit.rlim_cur = std::min<rlim_t>(1, limit.rlim_max);
    ::setrlimit(RLIMIT_CORE, &limit);
    // Should a core be written all the same, it holds no heap, no stack and no mapped file.
    const int filter = ::open("/proc/self/coredump_filter", O_WRONLY | O_CLOEXEC);
    if (filter < 0) return;
    [[maybe_unused]] const auto written = ::write(filter, "0", 1);
    ::close(filter);
}

} // namespace querlin
