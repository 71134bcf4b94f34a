#include "foundation/Words.h"

#include "foundation/Characters.h"
#include "foundation/TextCase.h"
#include "foundation/Trimming.h"

namespace querlin {

std::string comparedForm(std::string_view word) { return nfc(lowercase(trimAnyOf(word, wordPunctuation))); }

Words::Words(std::string_view text) : forms_(lowercase(text)) {
    // Where small letters take the same place and there is nothing to compose, the words' forms are there
    // already: most German text never gets further.
    const bool isSimple = forms_.size() == text.size() && latinPrefix(text) == text.size();
    if (!isSimple) forms_.clear();
    const auto* const start = text.data();
    std::size_t gapStart = 0;
    forEachWord(text, [&](std::string_view word) {
        const auto wordStart = static_cast<std::size_t>(word.data() - start);
        Entry entry{text.substr(gapStart, wordStart - gapStart), word};
        const auto bare = trimAnyOf(word, wordPunctuation);
        if (isSimple) {
            entry.formStart = static_cast<std::size_t>(bare.data() - start);
            entry.formLength = bare.size();
        } else {
            const auto form = comparedForm(bare);
            entry.formStart = forms_.size();
            entry.formLength = form.size();
            forms_ += form;
        }
        words_.push_back(entry);
        gapStart = wordStart + word.size();
    });
    rest_ = text.substr(gapStart);
}

} // namespace querlin
