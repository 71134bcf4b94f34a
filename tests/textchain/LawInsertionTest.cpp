#include "textchain/LawInsertion.h"

#include "textchain/SpokenLawReference.h"

#include "Rows.h"
#include "support/Laws.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

/// Two laws; both have a § 5, and only the first one's sections have titles.
class SomeLaws final : public LegalLookup {
public:
    std::optional<LegalSection> section(std::string_view id, std::string_view law) override {
        for (const auto& hit : hits_) {
            if (hit.law == law && hit.section.id == id) return hit.section;
        }
        return std::nullopt;
    }
    std::optional<LegalHit> sectionInAnyLaw(std::string_view id) override {
        for (const auto& hit : hits_) {
            if (hit.section.id == id) return hit;
        }
        return std::nullopt;
    }

private:
    std::vector<LegalHit> hits_ = {
        {"BGB", sectionOf("1814", "Voraussetzungen", "(1) Erster.\n\n(2) Zweiter\n1.Punkt,\n2.Punkt.\n\n(2a) Dazu.\n\n (3) Dritter.")},
        {"BGB", sectionOf("5", "Titel", "Ohne Absatz.")},
        {"FamFG", sectionOf("5", "", "Siehe § 1814 Absatz 2 BGB.")},
        {"FamFG", sectionOf("278a", "", "(1) Anhörung")}};
};

TEST(LawInsertion, PutsTheWordingInThePlaceOfTheCommand) {
    SomeLaws laws;
    const std::string whole = "(1) Erster.\n\n(2) Zweiter\n1.Punkt,\n2.Punkt.\n\n(2a) Dazu.\n\n (3) Dritter.";
    const std::string second = "§ 1814 Abs. 2 BGB – Voraussetzungen\n(2) Zweiter\n1.Punkt,\n2.Punkt.\n\n(2a) Dazu.";
    const std::string bgb = "§ 1814 BGB – Voraussetzungen\n" + whole;
    const std::vector<Row> rows = {
        {"füge Paragraph 1814 BGB ein.", bgb + ".", "the plain form keeps its mark"},
        {"Hier: Füge § 1814 Absatz 2 BGB ein, bitte.", "Hier: " + second + ", bitte.", "down to the Absatz, with (2a)"},
        {"Füge § 1814 Absatz 2 ein", second, "from the first law that has it"},
        {"füge 1814 Abs 3 BGB ein", "§ 1814 Abs. 3 BGB – Voraussetzungen\n(3) Dritter.", "a law makes a number a citation"},
        {"fünf FamFG einfügen", "§ 5 FamFG\nSiehe § 1814 Absatz 2 BGB.", "without a title no dash"},
        {"§ 1814 Satz 2 Nummer 1 BGB einfügen", bgb, "no deeper than the Absatz"},
        {"§ 1814 Absatz 9 BGB einfügen", bgb, "no such Absatz"},
        {"eins\nfüge § 5 BGB ein\n§ 5 FamFG einfügen zwei",
         "eins\n§ 5 BGB – Titel\nOhne Absatz.\n§ 5 FamFG\nSiehe § 1814 Absatz 2 BGB. zwei", "two commands"},
        {"füge Paragraph fünf ein", "§ 5 BGB – Titel\nOhne Absatz.", "\"ein\" ends the number"},
        {"fünf einfügen", "fünf einfügen", "a number alone is no command"},
        {"füge Paragraph 99999 BGB ein", "füge Paragraph 99999 BGB ein", "what can't be served stays"},
        {"füge den Paragraph 5 BGB ein", "füge den Paragraph 5 BGB ein", "a word between"}};
    expectAll([&laws](const std::string& spoken) { return SpokenLawReference::applyInsertCommands(spoken, laws); }, rows);
}

TEST(LawInsertion, IsFollowedByTheCitations) {
    SomeLaws laws;
    const auto process = [&laws](std::string_view text) {
        return SpokenLawReference::normalizeReferences(SpokenLawReference::applyInsertCommands(text, laws));
    };
    EXPECT_EQ(process("füge Paragraph 99999 BGB ein"), "füge § 99999 BGB ein");
    EXPECT_EQ(process("Laut Paragraph 5 BGB: § 5 FamFG einfügen"), "Laut § 5 BGB: § 5 FamFG\nSiehe § 1814 Abs. 2 BGB.")
        << "within inserted wording too";
    const auto once = process("füge § 1814 BGB ein");
    EXPECT_EQ(process(once), once) << "a second time changes nothing";
}

} // namespace
} // namespace querlin
