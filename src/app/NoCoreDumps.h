#pragma once

namespace querlin {

/// From here on neither a crash nor another program of the same user writes this process's memory, with what
/// was dictated, to a disk. Children begin anew.
void preventCoreDumps();

} // namespace querlin
