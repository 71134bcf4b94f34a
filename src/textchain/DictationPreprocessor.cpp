#include "textchain/DictationPreprocessor.h"

#include "foundation/Trimming.h"
#include "textchain/SpacingRules.h"

#include <array>

#include <fmt/format.h>

namespace querlin::DictationPreprocessor {

namespace {

struct SpokenMark {
    std::string_view phrase;
    std::string_view mark;
};

constexpr auto spokenMarks = std::to_array<SpokenMark>({
    {"neuer absatz", "\n\n"},
    {"neue zeile", "\n"},
    {"absatz ende", "\n\n"},
    {"fragezeichen", "?"},
    {"ausrufezeichen", "!"},
    {"doppelpunkt", ":"},
    {"semikolon", ";"},
    {"strichpunkt", ";"},
    {"gedankenstrich", " – "},
    {"komma", ","},
    {"punkt", "."},
});

const RuleList& rules() {
    static const auto list = [] {
        RuleList rules;
        for (const auto& [phrase, mark] : spokenMarks) {
            rules.add({fmt::format(R"((?<!\p{{L}}){}(?!\p{{L}}))", phrase), mark,
                       Requirement::beginsWith(phrase), LetterCase::ignored});
        }
        using namespace SpacingRules;
        for (const auto& rule : {gapBeforeMark, noGapBehindComma, noGapBehindSentence, repeatedBlanks,
                                 blanksBeforeNewline, blanksBehindNewline}) {
            rules.add(rule);
        }
        return rules;
    }();
    return list;
}

} // namespace

std::string applySpokenPunctuation(std::string_view text) {
    return std::string(trimBlanksAndTabs(rules().apply(std::string(text))));
}

} // namespace querlin::DictationPreprocessor
