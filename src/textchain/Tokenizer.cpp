#include "textchain/Tokenizer.h"

#include "foundation/Characters.h"
#include "foundation/Graphemes.h"
#include "foundation/Trimming.h"
#include "foundation/Words.h"

namespace querlin::Tokenizer {

namespace {

constexpr ScalarSet closingPunctuation(U".,;:!?)\"'“–");

bool isMadeOf(std::string_view character, const ScalarSet& scalars) {
    while (!character.empty()) {
        const auto next = decodeScalar(character);
        if (!scalars.contains(next.scalar)) return false;
        character.remove_prefix(next.lengthInBytes);
    }
    return true;
}

} // namespace

std::vector<Token> split(std::string_view text) {
    const Words words(text);
    std::vector<Token> tokens;
    tokens.reserve(words.size() + 1);
    for (std::size_t i = 0; i < words.size(); ++i) {
        tokens.push_back({std::string(words.raw(i)), std::string(words.compared(i))});
    }
    if (!words.rest().empty()) tokens.push_back({std::string(words.rest()), ""});
    return tokens;
}

std::string join(std::span<const Token> tokens) {
    std::string text;
    for (const auto& token : tokens) {
        const bool isMade = token.normalized.empty() && !token.raw.empty();
        const bool isJoined =
            !text.empty() && !endsInWhitespaceOrNewline(text) && leadingWhitespace(token.raw).empty();
        if (isMade && isJoined) text += ' ';
        text += token.raw;
    }
    return text;
}

std::string_view leadingWhitespace(std::string_view raw) {
    std::size_t length = 0;
    for (const auto character : Graphemes(raw)) {
        if (!isWhitespace(character)) break;
        length += character.size();
    }
    return raw.substr(0, length);
}

std::string_view trailingPunctuation(std::string_view raw) {
    std::size_t at = 0;
    std::size_t start = 0;
    for (const auto character : Graphemes(raw)) {
        at += character.size();
        if (!isMadeOf(character, closingPunctuation)) start = at;
    }
    return raw.substr(start);
}

} // namespace querlin::Tokenizer
