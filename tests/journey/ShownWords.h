#pragma once

#include <string>

#include <sys/types.h>

namespace querlin {

/// All names of elements that a program shows at this moment, as a blind user is read them: one a line, from the
/// accessibility bus. Empty while it shows none.
std::string wordsShownBy(pid_t process);

} // namespace querlin
