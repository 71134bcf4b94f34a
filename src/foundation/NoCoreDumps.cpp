#include "foundation/NoCoreDumps.h"

#include <algorithm>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace querlin {

void preventCoreDumps() {
    // The kernel writes no file of one byte, and this exact limit also keeps it from piping the core to a
    // program, which any other limit, even 0, does not (fs/coredump.c).
    rlimit limit{};
    ::getrlimit(RLIMIT_CORE, &limit);
    limit.rlim_cur = std::min<rlim_t>(1, limit.rlim_max);
    ::setrlimit(RLIMIT_CORE, &limit);
    // A core that is written nevertheless contains no heap, no stack and no mapped file.
    const int filter = ::open("/proc/self/coredump_filter", O_WRONLY | O_CLOEXEC);
    if (filter < 0) return;
    [[maybe_unused]] const auto written = ::write(filter, "0", 1);
    ::close(filter);
}

} // namespace querlin
