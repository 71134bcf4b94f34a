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

/// The first scalar of a text that isn't empty. Ill-formed UTF-8 gives U+FFFD for each maximal subpart,
/// as the Unicode Standard recommends (3.9).
DecodedScalar decodeScalar(std::string_view text);

/// The first scalar; 0 for the empty text.
inline char32_t firstScalar(std::string_view text) { return text.empty() ? 0 : decodeScalar(text).scalar; }

void appendScalar(std::string& text, char32_t scalar);

bool isValidUtf8(std::string_view text);

/// How many bytes at the front are ASCII.
std::size_t asciiPrefix(std::string_view text);

/// How many bytes at the front are well-formed scalars below U+0300: ASCII and Latin letters, nothing
/// that combines. Fast paths for German text go this far.
std::size_t latinPrefix(std::string_view text);

/// The text with everything ill-formed replaced by U+FFFD: "a\xFFz" -> "a\uFFFDz".
std::string validUtf8(std::string_view text);

} // namespace querlin
