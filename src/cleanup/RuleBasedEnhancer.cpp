#include "cleanup/RuleBasedEnhancer.h"

#include "foundation/Characters.h"
#include "foundation/Graphemes.h"
#include "foundation/Pattern.h"
#include "foundation/Replacing.h"
#include "foundation/TextCase.h"
#include "foundation/Trimming.h"
#include "foundation/WordSet.h"
#include "textchain/DictationPreprocessor.h"
#include "textchain/GermanNumberWords.h"
#include "textchain/Sentences.h"
#include "textchain/SpacingRules.h"

#include <algorithm>
#include <array>

#include <fmt/format.h>

namespace querlin::RuleBasedEnhancer {

namespace {

constexpr auto hesitations =
    std::to_array<std::string_view>({"ähm", "ähem", "äh", "ehm", "öhm", "öh", "hmm", "hm", "mhm", "tja"});

struct Filler {
    std::string_view pattern;
    /// What any spelling of it holds.
    std::string_view literal;
};

constexpr auto fillers = std::to_array<Filler>({
    {"sozusagen", "sozusagen"},
    {"gewisserma(?:ß|ss)en", "gewisserma"},
    {"quasi", "quasi"},
    {"halt eben", "halt eben"},
    {"ja gut", "ja gut"},
});

constexpr auto openers =
    std::to_array<std::string_view>({"also", "nun ja", "nun", "gut", "okay", "ok", "ja also"});

constexpr WordSet correctionSignals(std::to_array<std::string_view>({"nein", "quatsch", "entschuldigung",
                                                                     "korrektur", "vielmehr"}));

constexpr ScalarSet correctionPunctuation(U".,;:!?–-");

/// How far back a correction looks for the word that it takes up again.
constexpr std::size_t correctionReach = 6;

/// Words that go, with the comma and the white space after them.
const RuleList& removals() {
    static const auto list = [] {
        RuleList rules;
        const auto remove = [&rules](std::string_view pattern, std::string_view literal) {
            rules.add({fmt::format(R"((?<!\p{{L}}){}(?!\p{{L}}),?\s*)", pattern), "",
                       Requirement::beginsWith(literal), LetterCase::ignored});
        };
        for (const auto word : hesitations) remove(word, word);
        for (const auto& [pattern, literal] : fillers) remove(pattern, literal);
        for (const auto word : openers) {
            rules.add({fmt::format(R"((^|[.!?]\s+){}\b,?\s*)", word), "$1", Requirement::oneOf(word),
                       LetterCase::ignored});
        }
        return rules;
    }();
    return list;
}

/// "das das Haus" -> "das Haus". What is spelt or counted out stays: "S G G", "null null vier".
std::string withoutStutter(std::string text) {
    // "Maße" and "Masse" are two words, and so are "s" and one with a mark above.
    static const Pattern repeated(R"(\b(\p{L}{2,})(?:\s+\1\b(?!\p{M}))++)", LetterCase::ignored,
                                  Requirement::repeatedWord());
    return repeated.replaceEach(std::move(text), [](Pattern::Groups match) -> std::optional<std::string> {
        const bool isArticle = equalIgnoringCase(match[1], "ein") || equalIgnoringCase(match[1], "eine");
        if (!isArticle && GermanNumberWords::isNumberWord(match[1])) return std::nullopt;
        return std::string(match[1]);
    });
}

const RuleList& tidying() {
    using namespace SpacingRules;
    static const RuleList rules(std::to_array<Rule>({
        gapBeforeMark,
        noGapBehindComma,
        noGapBehindSentence,
        repeatedBlanks,
        repeatedMarks,
        blanksBeforeNewline,
        severalEmptyLines,
    }));
    return rules;
}

std::vector<std::string_view> splitAtBlanks(std::string_view text) {
    std::vector<std::string_view> pieces;
    while (true) {
        const auto end = text.find(' ');
        pieces.push_back(text.substr(0, end));
        if (end == std::string_view::npos) return pieces;
        text.remove_prefix(end + 1);
    }
}

std::string compared(std::string_view piece) { return lowercase(trimAnyOf(piece, correctionPunctuation)); }

bool isSignal(std::string_view piece) {
    return correctionSignals.mayContain(trimAnyOf(piece, correctionPunctuation)) &&
           correctionSignals.contains(compared(piece));
}

std::string joinedByBlanks(std::span<const std::string_view> pieces) {
    std::string text;
    for (const auto piece : pieces) text.append(piece).append(" ");
    return std::string(trimBlanksAndTabs(replacingAll(text, "  ", " ")));
}

/// "am Montag nein am Dienstag" -> "am Dienstag": what is said again after the signal takes the place of
/// what was said before. Where nothing is said again, only the signal goes.
std::string resolveSelfCorrections(std::string text) {
    const auto pieces = splitAtBlanks(text);
    if (pieces.size() < 3) return text;
    std::vector<std::string_view> kept;
    for (std::size_t at = 0; at < pieces.size(); ++at) {
        const bool isInside = !kept.empty() && at + 1 < pieces.size();
        if (!isInside || !isSignal(pieces[at])) {
            kept.push_back(pieces[at]);
            continue;
        }
        const auto next = compared(pieces[at + 1]);
        const auto reach = std::min(correctionReach, kept.size());
        const auto nearest =
            std::find_if(kept.rbegin(), kept.rbegin() + static_cast<std::ptrdiff_t>(reach),
                         [&next](std::string_view piece) { return compared(piece) == next; });
        if (nearest != kept.rbegin() + static_cast<std::ptrdiff_t>(reach))
            kept.erase(std::prev(nearest.base()), kept.end());
    }
    return joinedByBlanks(kept);
}

std::string finishedSentences(std::string_view text) {
    const auto capitalized = capitalizeSentences(text);
    std::string result(trimWhitespaceAndNewlines(capitalized));
    const auto last = lastGrapheme(result);
    if (isAlphabetic(last) || isNumeric(last)) result += '.';
    return result;
}

} // namespace

std::string clean(std::string_view text, TextTreatment treatment) {
    std::string result(trimWhitespaceAndNewlines(text));
    if (result.empty()) return result;
    if (!treatment.commandsApplied) result = DictationPreprocessor::applySpokenPunctuation(result);
    result = resolveSelfCorrections(withoutStutter(removals().apply(std::move(result))));
    result = trimBlanksAndTabs(tidying().apply(std::move(result)));
    return finishedSentences(result);
}

} // namespace querlin::RuleBasedEnhancer
