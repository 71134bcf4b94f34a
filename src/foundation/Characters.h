#pragma once

#include "foundation/Graphemes.h"
#include "foundation/Utf8.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace querlin {

/// Properties of a Unicode scalar (UAX #44): White_Space, Alphabetic, and a numeric type other than
/// none ("½" and "Ⅷ" are numeric).
bool isWhitespaceBeyondAscii(char32_t scalar);
inline bool isWhitespace(char32_t scalar) {
    if (scalar >= 0x80) return isWhitespaceBeyondAscii(scalar);
    return scalar == ' ' || (scalar >= '\t' && scalar <= '\r');
}
bool isAlphabeticBeyondAscii(char32_t scalar);
inline bool isAlphabetic(char32_t scalar) {
    if (scalar >= 0x80) return isAlphabeticBeyondAscii(scalar);
    return (scalar >= 'a' && scalar <= 'z') || (scalar >= 'A' && scalar <= 'Z');
}
bool isNumeric(char32_t scalar);

/// A character (a grapheme cluster) has the properties of its first scalar.
inline bool isWhitespace(std::string_view character) { return isWhitespace(firstScalar(character)); }
inline bool isAlphabetic(std::string_view character) { return isAlphabetic(firstScalar(character)); }
inline bool isNumeric(std::string_view character) { return isNumeric(firstScalar(character)); }

/// Calls `call` with each maximal run of characters that aren't white space, in order.
template<class Call>
void forEachWord(std::string_view text, Call call) {
    std::size_t start = 0;
    std::size_t at = 0;
    const auto close = [&] {
        if (at > start) call(text.substr(start, at - start));
    };
    while (at < text.size()) {
        const auto length = Graphemes::firstLength(text.substr(at));
        if (isWhitespace(text.substr(at, length))) {
            close();
            start = at + length;
        }
        at += length;
    }
    close();
}

/// The maximal runs of characters that aren't white space: " § 5\r\n" -> "§", "5". Views into the text,
/// none of them empty.
std::vector<std::string_view> splitAtWhitespace(std::string_view text);
/// The number of such runs: "zwei  Wörter" -> 2.
std::size_t countWords(std::string_view text);

} // namespace querlin
