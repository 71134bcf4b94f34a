#pragma once

#include <string_view>

namespace querlin {

/// Trimming goes scalar by scalar, not character by character.

/// Takes category Zs and U+0009 off both ends.
std::string_view trimBlanksAndTabs(std::string_view text);
/// Takes the categories Zs, Zl and Zp, U+0009 to U+000D and U+0085 off both ends.
std::string_view trimWhitespaceAndNewlines(std::string_view text);

} // namespace querlin
