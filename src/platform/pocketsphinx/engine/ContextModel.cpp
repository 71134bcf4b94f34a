#include "platform/pocketsphinx/engine/ContextModel.h"

#include "foundation/TextCase.h"
#include "foundation/Trimming.h"
#include "foundation/Utf8.h"
#include "foundation/Words.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <set>

#include <fmt/format.h>

namespace querlin::ContextModel {

namespace {

constexpr std::size_t longestWordInBytes = 80;
constexpr double shareOfBeginnings = 0.9;
constexpr double shareOfSuccessors = 0.9;

constexpr bool isLetter(char32_t scalar) {
    const bool isAscii = (scalar >= U'a' && scalar <= U'z') || (scalar >= U'A' && scalar <= U'Z');
    const bool isLatin = scalar >= U'À' && scalar < U'\u0250' && scalar != U'×' && scalar != U'÷';
    return isAscii || isLatin;
}

bool isWord(std::string_view text) {
    bool hasLetter = false;
    if (text.size() > longestWordInBytes) return false;
    while (!text.empty()) {
        const auto [scalar, length] = decodeScalar(text);
        if (!isLetter(scalar) && scalar != U'-' && scalar != U'\'') return false;
        hasLetter = hasLetter || isLetter(scalar);
        text.remove_prefix(length);
    }
    return hasLetter;
}

std::optional<Phrase> phraseOf(const std::string& text) {
    const auto composed = nfc(text);
    const Words words(composed);
    Phrase phrase;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const auto word = trimAnyOf(words.word(i), wordPunctuation);
        if (!isWord(word)) return std::nullopt;
        phrase.emplace_back(word);
    }
    return phrase;
}

struct Counts {
    std::map<std::string, double> beginnings; ///< also 0
    std::map<std::string, std::map<std::string, double>> successors;
};

Counts countsOf(const std::vector<Phrase>& phrases) {
    Counts counts;
    for (const auto& phrase : phrases) {
        for (const auto& word : phrase) counts.beginnings[word] += &word == &phrase.front() ? 1 : 0;
        for (std::size_t i = 1; i < phrase.size(); ++i) counts.successors[phrase[i - 1]][phrase[i]] += 1;
    }
    return counts;
}

} // namespace

std::vector<Phrase> phrases(const std::vector<std::string>& strings) {
    std::vector<Phrase> phrases;
    for (const auto& text : strings) {
        auto phrase = phraseOf(text);
        if (phrase && !phrase->empty()) phrases.push_back(std::move(*phrase));
    }
    return phrases;
}

std::vector<std::string> wordsOf(const std::vector<Phrase>& phrases) {
    std::vector<std::string> words;
    std::set<std::string_view> seen;
    for (const auto& phrase : phrases) {
        for (const auto& word : phrase) {
            if (seen.insert(word).second) words.push_back(word);
        }
    }
    return words;
}

std::string arpa(const std::vector<Phrase>& phrases) {
    const auto counts = countsOf(phrases);
    const auto words = static_cast<double>(counts.beginnings.size());
    const auto beginnings = static_cast<double>(phrases.size());
    std::string unigrams;
    std::string bigrams;
    std::size_t bigramCount = 0;
    for (const auto& [word, count] : counts.beginnings) {
        const double share = (shareOfBeginnings * count / beginnings) + ((1 - shareOfBeginnings) / words);
        const auto successors = counts.successors.find(word);
        const bool goesOn = successors != counts.successors.end();
        unigrams += fmt::format("{:.4f} {} {:.4f}\n", std::log10(share), word,
                                goesOn ? std::log10(1 - shareOfSuccessors) : 0);
        if (!goesOn) continue;
        double sum = 0;
        for (const auto& [next, times] : successors->second) sum += times;
        for (const auto& [next, times] : successors->second) {
            bigrams += fmt::format("{:.4f} {} {}\n", std::log10(shareOfSuccessors * times / sum), word, next);
            ++bigramCount;
        }
    }
    std::string text = fmt::format("\\data\\\nngram 1={}\n", counts.beginnings.size() + 2);
    if (bigramCount > 0) text += fmt::format("ngram 2={}\n", bigramCount);
    text += "\n\\1-grams:\n-1.0 </s> 0\n-99 <s> 0\n" + unigrams;
    if (bigramCount > 0) text += "\n\\2-grams:\n" + bigrams;
    return text + "\n\\end\\\n";
}

} // namespace querlin::ContextModel
