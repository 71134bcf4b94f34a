#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace querlin {

/// The replacement character, U+FFFD.
inline constexpr char32_t replacementScalar = U'\uFFFD';

/// The Unicode scalar at the front of a text, and its length.
struct DecodedScalar {
    char32_t scalar = 0;
    std::size_t lengthInBytes = 0;
};

/// The first scalar: "ß5" -> U+00DF, 2. Ill-formed UTF-8 gives U+FFFD for each maximal subpart, as the
/// Unicode Standard recommends (3.9). The empty text gives 0 with length 0.
DecodedScalar decodeScalarBeyondAscii(std::string_view text);
inline DecodedScalar decodeScalar(std::string_view text) {
    if (text.empty()) return {};
    const auto first = static_cast<unsigned char>(text.front());
    return first < 0x80 ? DecodedScalar{first, 1} : decodeScalarBeyondAscii(text);
}

/// The first scalar; 0 for the empty text.
inline char32_t firstScalar(std::string_view text) { return decodeScalar(text).scalar; }

/// Appends a scalar in UTF-8. Surrogates and values above U+10FFFF become U+FFFD.
void appendScalar(std::string& text, char32_t scalar);

/// Whether the whole text is well-formed; U+0000 is allowed.
bool isValidUtf8(std::string_view text);

/// Whether the text is well-formed and below U+0100, as most German text is; fast.
bool isLatin1(std::string_view text);

/// The number of ASCII bytes at the front.
std::size_t asciiPrefix(std::string_view text);

/// The number of bytes at the front that are ASCII and Latin letters (well-formed scalars below U+0300),
/// dashes, quotation marks and the like (U+2010 to U+2027), and "€": nothing that combines. Fast paths for
/// German text cover this range.
std::size_t latinPrefix(std::string_view text);

/// The text with everything ill-formed replaced by U+FFFD: "a\xFFz" -> "a\uFFFDz".
std::string validUtf8(std::string_view text);

} // namespace querlin
