#include "textchain/Sentences.h"

#include "foundation/Characters.h"
#include "foundation/Graphemes.h"
#include "foundation/Requirement.h"
#include "foundation/TextCase.h"

namespace querlin {

namespace {

constexpr ByteSet sentenceEnds(".!?\n");

bool isSentenceEnd(char byte) {
    return byte <= '?' && sentenceEnds.contains(static_cast<unsigned char>(byte));
}

/// The offset of the next character that ends a sentence, or the length.
std::size_t nextSentenceEnd(std::string_view text, std::size_t at) {
    for (; at < text.size(); ++at) {
        if (isSentenceEnd(text[at]) && Graphemes::firstLength(text.substr(at)) == 1) return at;
    }
    return at;
}

} // namespace

bool endsSentence(std::string_view character) {
    return character == "\r\n" || (character.size() == 1 && isSentenceEnd(character.front()));
}

std::string capitalizeSentences(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const auto start = at;
        std::string_view letter;
        while (at < text.size() && letter.empty()) {
            const auto character = text.substr(at, Graphemes::firstLength(text.substr(at)));
            if (isAlphabetic(character)) {
                letter = character;
            } else {
                at += character.size();
            }
        }
        result += text.substr(start, at - start);
        if (!letter.empty()) result += uppercase(letter);
        at += letter.size();
        const auto end = nextSentenceEnd(text, at);
        result += text.substr(at, end - at);
        at = end;
    }
    return result;
}

} // namespace querlin
