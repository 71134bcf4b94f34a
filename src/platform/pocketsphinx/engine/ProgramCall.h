#pragma once

#include "foundation/Time.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace querlin {

/// What a program writes to its standard output when it is given `input`; nothing if it can't be started,
/// fails or takes longer than `limit`, at which it is killed. The program is looked for in PATH.
std::optional<std::string> outputOf(std::vector<std::string> command, std::string_view input, Duration limit);

} // namespace querlin
