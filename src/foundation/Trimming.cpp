#include "foundation/Trimming.h"

#include "foundation/Utf8.h"

#include <unicode/uchar.h>

namespace querlin {

namespace {

bool isBlankOrTab(char32_t scalar) {
    if (scalar < 0x80) return scalar == ' ' || scalar == '\t';
    return u_charType(static_cast<UChar32>(scalar)) == U_SPACE_SEPARATOR;
}

bool isWhitespaceOrNewline(char32_t scalar) {
    if (scalar < 0x80) return scalar == ' ' || (scalar >= '\t' && scalar <= '\r');
    if (scalar == 0x85) return true;
    const auto category = u_charType(static_cast<UChar32>(scalar));
    return category == U_SPACE_SEPARATOR || category == U_LINE_SEPARATOR || category == U_PARAGRAPH_SEPARATOR;
}

/// Where the last scalar begins.
std::size_t lastScalarStart(std::string_view text) {
    if (static_cast<unsigned char>(text.back()) < 0x80) return text.size() - 1;
    constexpr std::size_t longest = 4;
    for (std::size_t length = 1; length <= longest && length <= text.size(); ++length) {
        const auto start = text.size() - length;
        if ((static_cast<unsigned char>(text[start]) & 0xC0U) != 0x80) {
            // Anything but one complete scalar at the end is ill-formed, and not a blank.
            return decodeScalar(text.substr(start)).lengthInBytes == length ? start : text.size() - 1;
        }
    }
    return text.size() - 1;
}

template<class Test>
std::string_view trimmed(std::string_view text, Test isTrimmed) {
    while (!text.empty()) {
        const auto first = decodeScalar(text);
        if (!isTrimmed(first.scalar)) break;
        text.remove_prefix(first.lengthInBytes);
    }
    while (!text.empty()) {
        const auto start = lastScalarStart(text);
        if (!isTrimmed(decodeScalar(text.substr(start)).scalar)) break;
        text.remove_suffix(text.size() - start);
    }
    return text;
}

} // namespace

std::string_view trimBlanksAndTabs(std::string_view text) { return trimmed(text, isBlankOrTab); }
std::string_view trimWhitespaceAndNewlines(std::string_view text) {
    return trimmed(text, isWhitespaceOrNewline);
}

bool endsInWhitespaceOrNewline(std::string_view text) {
    return !text.empty() && isWhitespaceOrNewline(firstScalar(text.substr(lastScalarStart(text))));
}

std::string_view trimAnyOfBothEnds(std::string_view text, const ScalarSet& scalars) {
    return trimmed(text, [&scalars](char32_t scalar) { return scalars.contains(scalar); });
}

} // namespace querlin
