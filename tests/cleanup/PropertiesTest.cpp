// What must hold for any text, on random mixtures of what dictations are made of; and texts made to hurt.

#include "cleanup/RuleBasedEnhancer.h"
#include "textchain/DictationCommands.h"
#include "textchain/DictationPreprocessor.h"
#include "textchain/LegalFormatting.h"
#include "textchain/SpokenLawReference.h"
#include "textchain/URLFormatting.h"

#include <random>
#include <sstream>

#include <gtest/gtest.h>

namespace querlin {
namespace {

using DictationCommands::Mode;

std::string prose(std::string_view text) { return DictationCommands::apply(text, Mode::prose).text; }
std::string compact(std::string_view text) { return DictationCommands::apply(text, Mode::compact).text; }
std::string cleaned(std::string_view text) { return RuleBasedEnhancer::clean(text, {.commandsApplied = true}); }

struct NamedStage {
    const char* name;
    std::string (*run)(std::string_view);
};

class Mixture {
public:
    explicit Mixture(std::string pieces) {
        std::istringstream parted(std::move(pieces));
        for (std::string piece; std::getline(parted, piece, '|');) pieces_.push_back(piece);
    }
    const std::vector<std::string>& all() const { return pieces_; }
    std::string next() {
        std::string text;
        const auto length = std::uniform_int_distribution<std::size_t>(0, 14)(random_);
        for (std::size_t i = 0; i < length; ++i)
            text += pieces_[std::uniform_int_distribution<std::size_t>(0, pieces_.size() - 1)(random_)];
        return text;
    }

private:
    std::mt19937 random_{11};
    std::vector<std::string> pieces_;
};

TEST(TextStages, LeaveTheirOwnResultAsItIs) {
    Mixture mixture(
        "Wort|Über|wir|3|½| | |  |, |. |.|,|?|!|:|;|\n|\n\n|(|)|„|“|–|\u00A0|👩‍⚖️|o\u0308|§ 5 BGB|Paragraph |fünf |"
        "3. Mai 2024|Az X 1 24|www. a . de|\t");
    const std::vector<NamedStage> stages = {{"citations", SpokenLawReference::normalizeReferences},
                                            {"legal", LegalFormatting::normalizeDates},
                                            {"addresses", URLFormatting::compactURLs}};
    for (int round = 0; round < 5000; ++round) {
        const auto text = mixture.next();
        for (const auto& [name, run] : stages) {
            const auto once = run(text);
            ASSERT_EQ(run(once), once) << name << " of " << text;
        }
    }
}

TEST(TextStages, LeaveAWellWrittenTextAlone) {
    Mixture mixture("Die Betreute wohnt hier. |Das Gericht entscheidet; wir warten. |Kommt er? |Ja! |Über 40 Euro – mehr nicht. |"
                    "Siehe § 1814 Abs. 2 BGB (Fassung 2023). |Er sagte: „Nein, danke.“ |Az. XVII 12/24 vom 03.05.2024. |"
                    "Treffpunkt und Kommando. |Der Punkt ist strittig. ");
    const std::vector<NamedStage> stages = {{"commands", prose},
                                            {"rules", cleaned},
                                            {"citations", SpokenLawReference::normalizeReferences},
                                            {"legal", LegalFormatting::apply},
                                            {"addresses", URLFormatting::compactURLs}};
    for (int round = 0; round < 500; ++round) {
        const auto mixed = mixture.next();
        const auto text = mixed.substr(0, mixed.find_last_not_of(' ') + 1);
        for (const auto& [name, run] : stages) EXPECT_EQ(run(text), text) << name;
    }
}

TEST(TextStages, SurviveTextsMadeToHurt) {
    // Quadratic work on these would take minutes.
    constexpr std::size_t count = 100'000;
    const std::vector<NamedStage> stages = {{"prose", prose},
                                            {"compact", compact},
                                            {"punctuation", DictationPreprocessor::applySpokenPunctuation},
                                            {"rules", cleaned},
                                            {"citations", SpokenLawReference::normalizeReferences},
                                            {"legal", LegalFormatting::apply},
                                            {"addresses", URLFormatting::compactURLs}};
    const Mixture pieces(" |\t\n|\r\n|,|. |„| “|( |punkt |streiche das |a streiche das |klammer auf |ä|ä |o\u0308 |ja |um nein |ähm, |§ |"
                         "§ 5 Absatz |eins |1. |Az |Az 1 1 |www.|http:/ |.a|/ |a b |\xFF|\xE2\x80|\u0301|\u200D");
    for (const auto& piece : pieces.all()) {
        std::string text = "Az 1 1";
        for (std::size_t i = 0; i < count; ++i) text += piece;
        text += "x";
        for (const auto& [name, run] : stages) EXPECT_LE(run(text).size(), 4 * text.size()) << name << " of " << piece;
    }
}

} // namespace
} // namespace querlin
