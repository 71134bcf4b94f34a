#include "desktop/Correction.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

TEST(Correction, IsOneWordForOneToThree) {
    using Words = std::vector<std::string>;
    struct Row {
        const char* before;
        const char* after;
        std::optional<Correction> change;
        const char* reason;
    };
    const std::vector<Row> rows = {{"Herr Meier kommt", "Herr Mayer kommt", Correction{{"Meier"}, "Mayer"}, "one word"},
                                   {"das Betreuungs Gericht\nentscheidet", "das Betreuungsgericht entscheidet",
                                    Correction{{"Betreuungs", "Gericht"}, "Betreuungsgericht"}, "two merged; white space doesn't count"},
                                   {"a b c d", "x d", Correction{{"a", "b", "c"}, "x"}, "three"},
                                   {"a b c d e", "x e", std::nullopt, "four are too many"},
                                   {"„Meier“, ja", "(Mayer). ja", Correction{{"Meier"}, "Mayer"}, "without the marks around"},
                                   {"Meier", "meier!", std::nullopt, "case and marks alone"},
                                   {"ein Wort", "ein neues Wort", std::nullopt, "a word added"},
                                   {"ein neues Wort", "ein Wort", std::nullopt, "a word gone"},
                                   {"Gerichtstermin morgen", "Gerichts Termin morgen", std::nullopt, "a word parted"},
                                   {"a x c y", "a u c v", std::nullopt, "two places"},
                                   {"a – b", "a x b", std::nullopt, "a mark became a word"},
                                   {"a b", "a –", std::nullopt, "a word became a mark"},
                                   {"gleich", "gleich", std::nullopt, "nothing changed"},
                                   {"", "neu", std::nullopt, "an empty field"},
                                   {"Tu\u0308r auf", "Tür zu", Correction{{"auf"}, "zu"}, "decomposed words are the same"}};
    for (const auto& [before, after, change, reason] : rows) EXPECT_EQ(singleChange(before, after), change) << reason;
    EXPECT_EQ((Correction{{"Betreuungs", "Gericht"}, "x"}.recognized()), "Betreuungs Gericht");
    EXPECT_EQ(wordsOf(" „BGB“,\n– gilt. "), (Words{"BGB", "", "gilt"}));
}

} // namespace
} // namespace querlin
