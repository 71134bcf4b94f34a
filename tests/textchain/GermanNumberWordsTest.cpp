#include "textchain/GermanNumberWords.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

/// A number as it is spoken in one word, put together from the other end.
std::string spoken(int number) {
    static const std::array<std::string, 20> small = {"",         "ein",      "zwei",     "drei",     "vier",     "fünf",    "sechs",
                                                      "sieben",   "acht",     "neun",     "zehn",     "elf",      "zwölf",   "dreizehn",
                                                      "vierzehn", "fünfzehn", "sechzehn", "siebzehn", "achtzehn", "neunzehn"};
    static const std::array<std::string, 10> tens = {"",        "",        "zwanzig", "dreißig", "vierzig",
                                                     "fünfzig", "sechzig", "siebzig", "achtzig", "neunzig"};
    const auto at = [](const auto& words, int index) { return words.at(static_cast<std::size_t>(index)); };
    if (number >= 1000) return spoken(number / 1000) + "tausend" + spoken(number % 1000);
    if (number >= 100) return spoken(number / 100) + "hundert" + spoken(number % 100);
    if (number < 20) return at(small, number);
    return number % 10 == 0 ? at(tens, number / 10) : at(small, number % 10) + "und" + at(tens, number / 10);
}

TEST(GermanNumberWords, ReadsEveryNumberUpToAHundredThousand) {
    for (int number = 1; number < 100'000; ++number) ASSERT_EQ(GermanNumberWords::parseWord(spoken(number)), number) << spoken(number);
}

TEST(GermanNumberWords, ReadsSpeltAndSpokenVariantsAndNothingElse) {
    using Value = std::optional<std::int64_t>;
    const std::vector<std::tuple<std::string_view, Value, const char*>> rows = {
        {"null", 0, "zero"},
        {"DREISSIG", 30, "capitals"},
        {"fu\u0308nf", 5, "decomposed"},
        {"tausend", 1000, "without a factor"},
        {"hundertundeins", std::nullopt, "und joins a unit and a ten only"},
        {"Hund", std::nullopt, "a noun with und"},
        {"Jahrhundert", std::nullopt, "a noun with hundert"},
        {"fuenfzehnundzwanzig", std::nullopt, "a teen is no unit"}};
    for (const auto& [word, value, reason] : rows) EXPECT_EQ(GermanNumberWords::parseWord(word), value) << reason;
}

TEST(GermanNumberWords, TakesAMegabyteInOneWord) {
    // A sequence of scale words is a sum; nothing else of this kind is a number.
    const std::vector<std::pair<std::string_view, bool>> rows = {
        {"tausend", true}, {"hundert", true}, {"und", false}, {"einund", false}, {"ß", false}};
    for (const auto& [part, isNumber] : rows) {
        std::string word;
        while (word.size() < 1'000'000) word += part;
        EXPECT_EQ(GermanNumberWords::isNumberWord(word), isNumber) << part;
    }
}

TEST(GermanNumberWords, WritesSequencesAsDigits) {
    using Words = std::vector<std::string_view>;
    const std::vector<std::tuple<Words, std::optional<std::string>, const char*>> rows = {
        {{"hundert", "zwei"}, "102", "from 100 on they add up"},
        {{"null", "acht"}, "08", "a leading zero stays"},
        {{"eins", "Haus"}, std::nullopt, "no number among them"},
        {{}, std::nullopt, "none"}};
    for (const auto& [words, digits, reason] : rows) EXPECT_EQ(GermanNumberWords::digits(words), digits) << reason;
}

} // namespace
} // namespace querlin
