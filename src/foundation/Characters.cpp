#include "foundation/Characters.h"

#include <unicode/uchar.h>

namespace querlin {

namespace {

UChar32 forIcu(char32_t scalar) { return static_cast<UChar32>(scalar); }

} // namespace

bool isWhitespaceBeyondAscii(char32_t scalar) { return u_isUWhiteSpace(forIcu(scalar)) != 0; }

bool isAlphabeticBeyondAscii(char32_t scalar) { return u_isUAlphabetic(forIcu(scalar)) != 0; }

bool isNumeric(char32_t scalar) {
    if (scalar < 0x80) return scalar >= '0' && scalar <= '9';
    return u_getIntPropertyValue(forIcu(scalar), UCHAR_NUMERIC_TYPE) != U_NT_NONE;
}

std::vector<std::string_view> splitAtWhitespace(std::string_view text) {
    std::vector<std::string_view> words;
    forEachWord(text, [&words](std::string_view word) { words.push_back(word); });
    return words;
}

std::size_t countWords(std::string_view text) {
    std::size_t count = 0;
    forEachWord(text, [&count](std::string_view) { ++count; });
    return count;
}

} // namespace querlin
