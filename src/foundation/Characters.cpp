#include "foundation/Characters.h"

#include "foundation/Graphemes.h"

#include <unicode/uchar.h>

namespace querlin {

namespace {

UChar32 forIcu(char32_t scalar) { return static_cast<UChar32>(scalar); }

/// Calls `word` with each run of characters that aren't white space.
template<class Call>
void forEachWord(std::string_view text, Call word) {
    std::size_t start = 0;
    std::size_t at = 0;
    const auto close = [&] {
        if (at > start) word(text.substr(start, at - start));
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

} // namespace

bool isWhitespace(char32_t scalar) {
    if (scalar < 0x80) return scalar == ' ' || (scalar >= '\t' && scalar <= '\r');
    return u_isUWhiteSpace(forIcu(scalar)) != 0;
}

bool isAlphabetic(char32_t scalar) {
    if (scalar < 0x80) return (scalar >= 'a' && scalar <= 'z') || (scalar >= 'A' && scalar <= 'Z');
    return u_isUAlphabetic(forIcu(scalar)) != 0;
}

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
