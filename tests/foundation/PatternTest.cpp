#include "foundation/Pattern.h"
#include "foundation/Words.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

std::string marked(const Pattern& pattern, std::string_view text) {
    return pattern.replaceEach(std::string(text), [](Pattern::Groups match) { return std::optional("<" + std::string(match[0]) + ">"); });
}

TEST(Pattern, KnowsUnicode) {
    struct Row {
        const char* expression;
        LetterCase letterCase;
        const char* text;
        const char* marked;
        const char* reason;
    };
    using enum LetterCase;
    const std::vector<Row> rows = {{R"(\s+)", counts, "a\u00A0\u202F\u2028\u0085b", "a<\u00A0\u202F\u2028\u0085>b", "all white space"},
                                   {R"(\w+)", counts, "Öl–ß", "<Öl>–<ß>", "letters"},
                                   {R"(übel)", ignored, "ÜBEL", "<ÜBEL>", "capitals"},
                                   {R"(maß)", ignored, "MA\u1E9E mass", "<MA\u1E9E> mass", "ß isn't ss"},
                                   {R"(^a|b$)", counts, "ab\na", "<a>b\na", "the whole text's ends"},
                                   {R"(x*)", counts, "äx", "<>ä<x><>", "empty matches move on by characters"},
                                   {R"(.)", counts, "a\xFFz", "<a><\uFFFD><z>", "ill-formed bytes"}};
    for (const auto& row : rows) EXPECT_EQ(marked(Pattern(row.expression, row.letterCase), row.text), row.marked) << row.reason;
}

TEST(Words, KnowGapsAndComparedForms) {
    const Words words(" „BGB“,  U\u0308BER\u00A0– \u0130x\n");
    ASSERT_EQ(words.size(), 4U);
    EXPECT_EQ(words.raw(0), " „BGB“,");
    EXPECT_EQ(words.gap(2), "\u00A0");
    const std::vector<std::string_view> compared = {"bgb", "über", "", "i\u0307x", ""}; // One small letter takes more room.
    for (std::size_t i = 0; i < compared.size(); ++i) EXPECT_EQ(words.compared(i), compared[i]);
    EXPECT_EQ(words.rest(), "\n");
}

} // namespace
} // namespace querlin
