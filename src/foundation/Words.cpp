#include "foundation/Words.h"

#include "foundation/Characters.h"
#include "foundation/TextCase.h"
#include "foundation/Trimming.h"

namespace querlin {

WordsOfText splitIntoWords(std::string_view text) {
    WordsOfText result;
    const auto* const start = text.data();
    std::size_t gapStart = 0;
    for (const auto word : splitAtWhitespace(text)) {
        const auto wordStart = static_cast<std::size_t>(word.data() - start);
        result.words.push_back({text.substr(gapStart, wordStart - gapStart), word});
        gapStart = wordStart + word.size();
    }
    result.rest = text.substr(gapStart);
    return result;
}

std::string comparedForm(std::string_view word) { return nfc(lowercase(trimAnyOf(word, wordPunctuation))); }

} // namespace querlin
