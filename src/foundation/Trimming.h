#pragma once

#include "foundation/ScalarSet.h"

#include <string_view>

namespace querlin {

/// Removes category Zs and U+0009 from both ends: "\t\u00A0ja\n " -> "ja\n". By scalars, not by characters.
/// Ill-formed bytes stay.
std::string_view trimBlanksAndTabs(std::string_view text);
/// Removes the categories Zs, Zl and Zp, U+0009 to U+000D and U+0085 from both ends, likewise:
/// "\t\u00A0ja\n " -> "ja".
std::string_view trimWhitespaceAndNewlines(std::string_view text);
/// Whether the last scalar is in that set.
bool endsInWhitespaceOrNewline(std::string_view text);
/// Removes the scalars of a set from both ends: "(BGB)." with "()." -> "BGB".
std::string_view trimAnyOfBothEnds(std::string_view text, const ScalarSet& scalars);
inline std::string_view trimAnyOf(std::string_view text, const ScalarSet& scalars) {
    const auto stays = [&scalars](char byte) {
        const auto scalar = static_cast<unsigned char>(byte);
        return scalar < 0x80 && !scalars.contains(scalar);
    };
    if (!text.empty() && stays(text.front()) && stays(text.back())) return text;
    return trimAnyOfBothEnds(text, scalars);
}

} // namespace querlin
