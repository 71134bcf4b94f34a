#include "textchain/Tokenizer.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

using Tokenizer::Token;
using Tokens = std::vector<Token>;

TEST(Tokenizer, SplitsIntoRawAndNormalized) {
    const std::vector<std::tuple<std::string_view, Tokens, const char*>> rows = {
        {"", {}, "no text"},
        {"  ", {{"  ", ""}}, "white space alone"},
        {"Hallo, Welt.", {{"Hallo,", "hallo"}, {" Welt.", "welt"}}, "the gap belongs to the word behind it"},
        {"Hallo \n", {{"Hallo", "hallo"}, {" \n", ""}}, "a gap at the end is a token of its own"},
        {"a – „z.B.“", {{"a", "a"}, {" –", ""}, {" „z.B.“", "z.b"}}, "punctuation alone, and within a word"},
        {"§\u00A05\u2028U\u0308BER", {{"§", "§"}, {"\u00A05", "5"}, {"\u2028U\u0308BER", "über"}}, "odd white space, decomposed capital"},
    };
    for (const auto& [text, tokens, reason] : rows) {
        const Tokenizer::Split split(text);
        EXPECT_TRUE(std::ranges::equal(split.tokens(), tokens)) << reason;
    }
}

TEST(Tokenizer, JoinsWhatItSplitAndPartsWhatAStageMade) {
    const Token made{"§ 1814 BGB", ""};
    EXPECT_EQ(Tokenizer::join(Tokens{{"siehe", "siehe"}, made, {", ja", "ja"}}), "siehe § 1814 BGB, ja");
    EXPECT_EQ(Tokenizer::join(Tokens{{"siehe\n", "siehe"}, made}), "siehe\n§ 1814 BGB") << "after a line break";
    EXPECT_EQ(Tokenizer::join(Tokens{{"siehe", "siehe"}, {"\n§ 5", ""}}), "siehe\n§ 5") << "with a gap of its own";
    EXPECT_EQ(Tokenizer::join(Tokens{made}), "§ 1814 BGB") << "at the beginning";
}

TEST(Tokenizer, TellsClosingPunctuation) {
    const std::vector<std::pair<std::string_view, std::string_view>> rows = {{"BGB).", ")."}, {"(BGB", ""},       {"BGB“–", "“–"},
                                                                             {"BGB—", ""},    {"BGB.\u0308", ""}, {"?!", "?!"}};
    for (const auto& [raw, closing] : rows) EXPECT_EQ(Tokenizer::trailingPunctuation(raw), closing) << raw;
}

} // namespace
} // namespace querlin
