#pragma once

namespace querlin {

/// From here on a crash of this process, or of one that it starts, leaves none of its memory on a disk or
/// with a program that collects crashes: what was dictated may be in it. Other programs of the same user can
/// still look into the process, as desktop services must to know it.
void preventCoreDumps();

} // namespace querlin
