#include "foundation/Words.h"

#include "foundation/Characters.h"
#include "foundation/TextCase.h"
#include "foundation/Trimming.h"

namespace querlin {

namespace {

/// `forEachWord` for a text without combining marks and without white space above U+00FF.
template<class Call>
void forEachSimpleWord(std::string_view text, Call call) {
    std::size_t start = 0;
    for (std::size_t at = 0; at < text.size();) {
        const auto byte = static_cast<unsigned char>(text[at]);
        if (byte > ' ' && byte != 0xC2) {
            ++at;
            continue;
        }
        const auto scalar = byte == 0xC2 ? static_cast<unsigned char>(text[at + 1]) : byte;
        const std::size_t length = byte == 0xC2 ? 2 : 1;
        if (isWhitespace(char32_t{scalar})) {
            if (at > start) call(text.substr(start, at - start));
            start = at + length;
        }
        at += length;
    }
    if (start < text.size()) call(text.substr(start));
}

} // namespace

std::string comparedForm(std::string_view word) { return nfc(lowercase(trimAnyOf(word, wordPunctuation))); }

Words::Words(std::string_view text) {
    // If lower case has the same length and nothing composes, the compared forms are slices of it: the fast
    // path of nearly all German text.
    bool isSimple = isLatin1(text);
    if (isSimple) {
        forms_.resize(text.size());
        lowercaseLatin1(text, forms_.data());
    } else if (latinPrefix(text) == text.size()) {
        forms_ = lowercase(text);
        isSimple = forms_.size() == text.size();
    }
    if (!isSimple) forms_.clear();
    const auto* const start = text.data();
    std::size_t gapStart = 0;
    words_.reserve(text.size() / 6);
    const auto take = [&](std::string_view word) {
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
    };
    if (isSimple) {
        forEachSimpleWord(text, take);
    } else {
        forEachWord(text, take);
    }
    rest_ = text.substr(gapStart);
}

} // namespace querlin
