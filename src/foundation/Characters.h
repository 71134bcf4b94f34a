#pragma once

#include "foundation/Utf8.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace querlin {

/// Properties of a Unicode scalar (UAX #44): White_Space, Alphabetic, and a numeric type other than
/// none ("½" and "Ⅷ" are numeric).
bool isWhitespace(char32_t scalar);
bool isAlphabetic(char32_t scalar);
bool isNumeric(char32_t scalar);

/// A character, that is a grapheme cluster, is what its first scalar is.
inline bool isWhitespace(std::string_view character) { return isWhitespace(firstScalar(character)); }
inline bool isAlphabetic(std::string_view character) { return isAlphabetic(firstScalar(character)); }
inline bool isNumeric(std::string_view character) { return isNumeric(firstScalar(character)); }

/// The maximal runs of characters that aren't white space: " § 5\r\n" -> "§", "5". Views into the text,
/// none of them empty.
std::vector<std::string_view> splitAtWhitespace(std::string_view text);
/// How many there are: "zwei  Wörter" -> 2.
std::size_t countWords(std::string_view text);

} // namespace querlin
