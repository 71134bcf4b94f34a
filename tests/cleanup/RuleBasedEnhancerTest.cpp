#include "cleanup/RuleBasedEnhancer.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

struct Row {
    const char* spoken;
    const char* cleaned;
    const char* reason;
};

void expectAll(TextTreatment treatment, const std::vector<Row>& rows) {
    for (const auto& [spoken, cleaned, reason] : rows) EXPECT_EQ(RuleBasedEnhancer::clean(spoken, treatment), cleaned) << reason;
}

TEST(RuleBasedEnhancer, TakesOutWhatNobodyWrites) {
    expectAll({}, {{"", "", "nothing"},
                   {" \n ", "", "white space alone"},
                   {"ähm also das ist, äh, gut", "Das ist, gut.", "hesitations go before openers"},
                   {"Hm, ja", "Ja.", "with its comma"},
                   {"Tja das wars Mhm", "Das wars.", "at both ends"},
                   {"ÄHM\u00A0ja Ähmchen", "Ja Ähmchen.", "in whatever case, as whole words"},
                   {"das ist sozusagen quasi fertig", "Das ist fertig.", "fillers"},
                   {"GEWISSERMASSEN gewissermaßen gewisserma\u1E9Een ja", "Ja.", "ß and ss are the same filler"},
                   {"er ist halt eben da, ja gut, fertig", "Er ist da, fertig.", "of two words"},
                   {"nun ja gut das", "Das.", "openers one after the other"},
                   {"Ja. Also los. Und also doch", "Ja. Los. Und also doch.", "after a mark, not within a sentence"},
                   {"Gut gemacht", "Gemacht.", "an opener is one wherever it opens"},
                   {"also\nalso", "Also.", "each opener once"},
                   {"Der der Mann mann", "Der Mann.", "the first form of a stutter stays"},
                   {"Das Haus das Haus", "Das Haus das Haus.", "phrases are no stutter"},
                   {"in Maßen Massen essen", "In Maßen Massen essen.", "ß and ss part words"},
                   {"S G G null null vier eine eine Frage", "S G G null null vier eine Frage.", "spelt and counted, but no article"},
                   {"x\u0304 x\u0304 y", "X\u0304 x\u0304 y.", "letters with marks aren't taken apart"}});
}

TEST(RuleBasedEnhancer, ResolvesCorrections) {
    expectAll({}, {{"am Montag nein am Dienstag", "Am Dienstag.", "what is said again takes the place"},
                   {"um fünf, nein, um sechs Uhr", "Um sechs Uhr.", "marks don't count"},
                   {"Der Termin ist am Montag Korrektur am Dienstag", "Der Termin ist am Dienstag.", "within a sentence"},
                   {"er sagt quatsch zu allem", "Er sagt zu allem.", "nothing said again: the signal goes"},
                   {"nein das stimmt", "Nein das stimmt.", "not the first word"},
                   {"das stimmt nein", "Das stimmt nein.", "not the last"},
                   {"ja nein", "Ja nein.", "not in two words"},
                   {"um a b c d e vielmehr um zwei", "Um zwei.", "six words back"},
                   {"um a b c d e f vielmehr um zwei", "Um a b c d e f um zwei.", "seven are too far"},
                   {"um eins nein um zwei nein um drei", "Um drei.", "twice"}});
}

TEST(RuleBasedEnhancer, RepairsPunctuation) {
    expectAll({}, {{"Was!! Ja ,nein", "Was! Ja, nein.", "repeated marks, spacing"},
                   {"Fertig.", "Fertig.", "a mark at the end"},
                   {"(siehe oben)", "(Siehe oben)", "no point after a bracket"},
                   {"Zahl 3", "Zahl 3.", "after a digit"},
                   {"a  \n\n\n b", "A\n\nB.", "white space around breaks"},
                   {"das Komma fehlt Punkt", "Das, fehlt.", "spoken marks, where the commands haven't run"}});
    expectAll({.commandsApplied = true}, {{"der Punkt ist strittig", "Der Punkt ist strittig.", "what they left is a noun"}});
}

} // namespace
} // namespace querlin
