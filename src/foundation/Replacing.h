#pragma once

#include <string>
#include <string_view>

namespace querlin {

/// Replaces each `from` by `to`, in one pass from the front: "a   b" with "  " and " " -> "a  b". `from` must
/// not be empty.
std::string replacingAll(std::string_view text, std::string_view from, std::string_view to);

} // namespace querlin
