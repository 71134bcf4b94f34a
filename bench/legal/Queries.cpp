#include "Queries.h"

#include "foundation/TextCase.h"

#include <algorithm>
#include <cctype>
#include <random>
#include <unordered_map>
#include <unordered_set>

namespace querlin::bench {

namespace {

/// Whether a byte belongs to a letter of German words, in UTF-8.
bool isOfLetter(std::string_view text, std::size_t at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if (byte < 0x80) return std::isalpha(byte) != 0;
    return byte == 0xC3 || (at > 0 && static_cast<unsigned char>(text[at - 1]) == 0xC3);
}

/// All words with how often they occur, the most frequent first.
std::vector<std::pair<std::string, std::size_t>> vocabulary(const Corpus& corpus) {
    std::unordered_map<std::string, std::size_t> counts;
    for (const auto& law : corpus.laws) {
        for (const auto& section : law.sections) {
            const auto text = lowercase(section.text.view());
            for (std::size_t at = 0; at < text.size(); ++at) {
                const auto start = at;
                while (at < text.size() && isOfLetter(text, at)) ++at;
                if (at > start) ++counts[text.substr(start, at - start)];
            }
        }
    }
    std::vector<std::pair<std::string, std::size_t>> words(counts.begin(), counts.end());
    std::ranges::sort(words, [](const auto& a, const auto& b) {
        return a.second != b.second ? a.second > b.second : a.first < b.first;
    });
    std::erase_if(words, [](const auto& word) { return lengthInScalars(word.first) < 3; });
    return words;
}

} // namespace

std::size_t lengthInScalars(std::string_view text) {
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char byte) { return (byte & 0xC0) != 0x80; }));
}

std::vector<QueryMix> queryMixes(const Corpus& corpus, std::size_t terms) {
    auto words = vocabulary(corpus);
    QueryMix frequent{"frequent words", {}};
    for (std::size_t i = 0; i < std::min(terms, words.size()); ++i) frequent.terms.push_back(words[i].first);

    std::mt19937_64 engine(1814);
    for (std::size_t i = words.size(); i > 1; --i) std::swap(words[i - 1], words[engine() % i]);
    QueryMix drawn{"vocabulary", {}};
    for (std::size_t i = 0; i < std::min(terms, words.size()); ++i) drawn.terms.push_back(words[i].first);

    QueryMix typed{"typed prefixes", {}};
    std::unordered_set<std::string> known;
    for (const auto& word : drawn.terms) {
        std::size_t letters = 0;
        for (std::size_t at = 0; at < word.size() && typed.terms.size() < terms; ++at) {
            const bool isBoundary = (word[at] & 0xC0) != 0x80;
            if (isBoundary && letters++ >= 2 && known.insert(word.substr(0, at)).second)
                typed.terms.push_back(word.substr(0, at));
        }
    }
    return {std::move(frequent), std::move(drawn), std::move(typed)};
}

} // namespace querlin::bench
