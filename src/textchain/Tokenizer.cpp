#include "textchain/Tokenizer.h"

#include "foundation/Characters.h"
#include "foundation/Graphemes.h"
#include "foundation/Trimming.h"

#include <deque>

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

Split::Split(std::string_view text) : words_(text) {
    tokens_.reserve(words_.size() + 1);
    for (std::size_t i = 0; i < words_.size(); ++i) tokens_.push_back({words_.raw(i), words_.compared(i)});
    if (!words_.rest().empty()) tokens_.push_back({words_.rest(), ""});
}

std::string join(std::span<const Token> tokens) {
    std::string text;
    for (const auto& token : tokens) {
        const bool isMade = token.normalized.empty() && !token.raw.empty();
        if (isMade && !text.empty() && leadingWhitespace(token.raw).empty() &&
            !endsInWhitespaceOrNewline(text))
            text += ' ';
        text += token.raw;
    }
    return text;
}

std::string replacing(std::string_view text, const Replacing& at) {
    const Split split(text);
    const auto tokens = split.tokens();
    std::vector<Token> result;
    std::deque<std::string> made;
    std::size_t unchanged = 0; // The first token that isn't in the result yet.
    const auto keepUpTo = [&](std::size_t end) {
        if (unchanged == end) return;
        const auto* start = tokens[unchanged].raw.data();
        const auto& last = tokens[end - 1];
        result.push_back({{start, last.raw.data() + last.raw.size()}, "unchanged"});
    };
    for (std::size_t index = 0; index < tokens.size();) {
        auto replacement = at(tokens, index);
        if (!replacement) {
            ++index;
            continue;
        }
        keepUpTo(index);
        made.push_back(std::move(replacement->text));
        result.push_back({made.back(), ""});
        index = unchanged = replacement->end;
    }
    keepUpTo(tokens.size());
    return join(result);
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
