#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace querlin {

/// Stands for what can't be read (U+FFFD).
inline constexpr char32_t replacementScalar = U'\uFFFD';

/// One Unicode scalar at the front of a text, and the bytes that it takes.
struct DecodedScalar {
    char32_t scalar = 0;
    std::size_t lengthInBytes = 0;
};

/// The first scalar: "ß5" -> U+00DF, 2. Ill-formed UTF-8 gives U+FFFD for each maximal subpart, as the
/// Unicode Standard recommends (3.9). The empty text gives 0 of no length.
DecodedScalar decodeScalarBeyondAscii(std::string_view text);
inline DecodedScalar decodeScalar(std::string_view text) {
    if (text.empty()) return {};
    const auto first = static_cast<unsigned char>(text.front());
    return first < 0x80 ? DecodedScalar{first, 1} : decodeScalarBeyondAscii(text);
}

/// The first scalar; 0 for the empty text.
inline char32_t firstScalar(std::string_view text) { return decodeScalar(text).scalar; }

/// Adds a scalar in UTF-8. Surrogates and what lies beyond U+10FFFF become U+FFFD.
void appendScalar(std::string& text, char32_t scalar);

/// Whether the whole text is well-formed; U+0000 may occur in it.
bool isValidUtf8(std::string_view text);

/// Whether all of it is well-formed and below U+0100: most German text, and quick to tell.
bool isLatin1(std::string_view text);

/// How many bytes at the front are ASCII.
std::size_t asciiPrefix(std::string_view text);

/// How many bytes at the front are ASCII and Latin letters (well-formed scalars below U+0300), dashes,
/// quotation marks and the like (U+2010 to U+2027), and "€": nothing that combines. Fast paths for
/// German text go this far.
std::size_t latinPrefix(std::string_view text);

/// The text with everything ill-formed replaced by U+FFFD: "a\xFFz" -> "a\uFFFDz".
std::string validUtf8(std::string_view text);

} // namespace querlin
