#pragma once

#include <string>
#include <string_view>

namespace querlin {

/// Each `from` becomes `to`, in one pass from the front: "a   b" with "  " and " " -> "a  b". `from` isn't
/// empty.
std::string replacingAll(std::string_view text, std::string_view from, std::string_view to);

} // namespace querlin
