#include "desktop/Correction.h"

#include "foundation/Characters.h"
#include "foundation/TextCase.h"
#include "foundation/Trimming.h"
#include "foundation/Words.h"

#include <algorithm>
#include <span>

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr std::size_t mostReplacedWords = 3;

using WordList = std::span<const std::string_view>;

/// How many words are the same at the front of both.
std::size_t commonBeginning(WordList a, WordList b) {
    return static_cast<std::size_t>(std::ranges::mismatch(a, b, canonicallyEqual).in1 - a.begin());
}

std::size_t commonEnd(WordList a, WordList b) {
    std::size_t count = 0;
    while (count < std::min(a.size(), b.size()) &&
           canonicallyEqual(a[a.size() - 1 - count], b[b.size() - 1 - count]))
        ++count;
    return count;
}

} // namespace

std::string Correction::recognized() const { return fmt::format("{}", fmt::join(recognizedWords, " ")); }

std::vector<std::string> wordsOf(std::string_view text) {
    std::vector<std::string> words;
    for (const auto word : splitAtWhitespace(text)) words.emplace_back(trimAnyOf(word, wordPunctuation));
    return words;
}

std::optional<Correction> singleChange(std::string_view from, std::string_view to) {
    const auto before = splitAtWhitespace(from);
    const auto after = splitAtWhitespace(to);
    if (before.empty() || after.empty()) return std::nullopt;
    const auto front = commonBeginning(before, after);
    const auto replaced = WordList(before).subspan(front);
    const auto replacing = WordList(after).subspan(front);
    const auto back = commonEnd(replaced, replacing);
    const auto count = replaced.size() - back;
    if (replacing.size() - back != 1 || count < 1 || count > mostReplacedWords) return std::nullopt;

    Correction correction;
    for (const auto word : replaced.first(count))
        correction.recognizedWords.emplace_back(trimAnyOf(word, wordPunctuation));
    correction.corrected = trimAnyOf(replacing.front(), wordPunctuation);
    const bool lostWord =
        std::ranges::count(correction.recognizedWords, "") > 0 || correction.corrected.empty();
    const bool changedFormAlone =
        canonicallyEqual(lowercase(correction.recognized()), lowercase(correction.corrected));
    if (lostWord || changedFormAlone) return std::nullopt;
    return correction;
}

} // namespace querlin
