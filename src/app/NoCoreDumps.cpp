#include "app/NoCoreDumps.h"

#include <sys/prctl.h>
#include <sys/resource.h>

namespace querlin {

void preventCoreDumps() {
    const rlimit none{};
    ::setrlimit(RLIMIT_CORE, &none);
#ifndef __SANITIZE_ADDRESS__ // It looks into its own process to find leaks.
    ::prctl(PR_SET_DUMPABLE, 0);
#endif
}

} // namespace querlin
