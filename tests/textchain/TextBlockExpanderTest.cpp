#include "textchain/TextBlockExpander.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

using Names = std::vector<std::string>;

/// Saturday, 14 March 2026, 09:05 in Berlin.
const Date now = std::chrono::sys_days(std::chrono::year(2026) / 3 / 14) + std::chrono::minutes(8 * 60 + 5);

TEST(TextBlockExpander, PutsBlocksInPlaceOfTheirNames) {
    const std::string hearing = "Am 14.03.2026 fand die persönliche Anhörung der betreuten Person statt. "
                                "Die Anhörung erfolgte in der Wohnung der betreuten Person.";
    const std::vector<TextBlock> blocks = {{"Anhörung", TextBlock::builtIn()[0].content},
                                           {"Gruß", "Mit freundlichen Grüßen\n\n"},
                                           {"anhörung  kurz", "KURZ"},
                                           {"Anhörung kurz", "zweiter"},
                                           {"", "leer"},
                                           {" – ", "STRICH"}};
    struct Row {
        std::string text, expected;
        Names used;
        const char* reason;
    };
    const std::vector<Row> rows = {
        {"Hier kommt der Baustein Anhörung und mehr", "Hier kommt der " + hearing + " und mehr", {"Anhörung"}, "in a sentence"},
        {"„Vorlage“ ANHO\u0308RUNG. Danach", hearing + " Danach", {"Anhörung"}, "punctuation, case and form don't count"},
        {"Textbaustein Anhörung kurz", "KURZ", {"anhörung  kurz"}, "more words first, then the order of the list"},
        {"Ende\nBaustein Gruß Baustein Gruß",
         "Ende Mit freundlichen Grüßen\n\nMit freundlichen Grüßen\n\n",
         {"Gruß", "Gruß"},
         "the trigger's gap goes"},
        {"Baustein Unbekannt", "Baustein Unbekannt", {}, "no such block"},
        {"Baustein –", "STRICH", {" – "}, "a name of punctuation"},
    };
    for (const auto& row : rows) {
        const auto outcome = TextBlockExpander::expand(row.text, blocks, now);
        EXPECT_EQ(outcome.text, row.expected) << row.reason;
        EXPECT_EQ(outcome.usedBlocks, row.used) << row.reason;
    }
    EXPECT_EQ(TextBlockExpander::expand("ohne Blöcke \n", {}, now).text, "ohne Blöcke \n");
}

TEST(TextBlockExpander, FillsPlaceholdersOfTheLocalMoment) {
    const std::vector<std::pair<std::string_view, std::string_view>> rows = {{"{Datum}, {Uhrzeit} Uhr", "14.03.2026, 09:05 Uhr"},
                                                                             {"{WOCHENTAG} {jahr}{Jahr}", "Samstag 20262026"},
                                                                             {"{Monat} {Datum", "{Monat} {Datum"},
                                                                             {"{{Jahr}}", "{2026}"},
                                                                             {"{Dat\xFF}", "{Dat\xFF}"}};
    for (const auto& [content, filled] : rows) EXPECT_EQ(TextBlockExpander::fillPlaceholders(content, now), filled);
}

} // namespace
} // namespace querlin
