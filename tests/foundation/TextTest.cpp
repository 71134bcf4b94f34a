// Unicode text: characters, case, forms, trimming, order, German formats.

#include "foundation/Characters.h"
#include "foundation/GermanFormat.h"
#include "foundation/Graphemes.h"
#include "foundation/PlainText.h"
#include "foundation/TextCase.h"
#include "foundation/Trimming.h"
#include "foundation/Utf8.h"

#include <algorithm>
#include <random>
#include <sstream>

#include <gtest/gtest.h>
#include <unicode/brkiter.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

namespace querlin {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;
using Texts = std::vector<std::string_view>;

TEST(Utf8, ReplacesEachMaximalIllFormedSubpart) {
    const std::vector<std::tuple<std::string_view, std::string_view, const char*>> rows = {
        {"Grüße, 𝄞 und \0 Ende"sv, "Grüße, 𝄞 und \0 Ende"sv, "well-formed, with a zero"},
        {"a\xFFz", "a\uFFFDz", "a byte that never occurs"},
        {"12345678\x80", "12345678\uFFFD", "a lone continuation behind eight ASCII bytes"},
        {"\xE2\x82", "\uFFFD", "truncated: one subpart"},
        {"\xC0\xAF", "\uFFFD\uFFFD", "overlong"},
        {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD", "surrogate"},
        {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD", "beyond U+10FFFF"},
    };
    for (const auto& [text, expected, reason] : rows) {
        EXPECT_EQ(validUtf8(text), expected) << reason;
        EXPECT_EQ(isValidUtf8(text), text == expected) << reason;
    }
}

TEST(Graphemes, AgreeWithIcuOnAnyMixture) {
    std::vector<std::string> pieces = {"\0"s, "\xFF", "\xE2\x82"};
    std::istringstream parted(
        "a|Z| "
        "|\n|\r|\r\n|\t|ä|ß|\u00AD|\u00A9|\u0308|\u0301|\u200D|\uFE0F|👩|👨‍👩‍👧|❤️|🇩🇪|🇩|🇫|👍🏽|각|"
        "\u1100|\u1161|\u11A8|क|\u094D|\u0915|\u0600|\u0E33|é|€|„|\u0903|\u0D4E|中|\u2028|\u0085");
    for (std::string piece; std::getline(parted, piece, '|');) pieces.push_back(piece);
    std::mt19937 random(7);
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> icuIterator(icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    ASSERT_TRUE(U_SUCCESS(status));
    for (int round = 0; round < 20'000; ++round) {
        std::string text;
        for (auto count = std::uniform_int_distribution(0, round % 100 == 0 ? 80 : 12)(random); count > 0; --count) {
            text += pieces[std::uniform_int_distribution<std::size_t>(0, pieces.size() - 1)(random)];
        }
        if (round % 4 == 0) appendScalar(text, std::uniform_int_distribution<char32_t>(0, 0x20000)(random));
        ASSERT_EQ(graphemeCount(text), graphemeCount(validUtf8(text))) << text;
        text = validUtf8(text);
        const auto wide = icu::UnicodeString::fromUTF8(text);
        icuIterator->setText(wide);
        std::vector<std::string> expected;
        for (auto from = icuIterator->first(), to = icuIterator->next(); to != icu::BreakIterator::DONE;
             from = to, to = icuIterator->next()) {
            wide.tempSubStringBetween(from, to).toUTF8String(expected.emplace_back());
        }
        const Graphemes graphemes(text);
        ASSERT_EQ((std::vector<std::string>(graphemes.begin(), graphemes.end())), expected) << text;
        ASSERT_EQ(graphemeCount(text), expected.size()) << text;
        ASSERT_EQ(lastGrapheme(text), expected.empty() ? "" : expected.back()) << text;
    }
}

TEST(Graphemes, TakeWindowsAndOddBytesInTheirStride) {
    std::string family = "x";
    for (int i = 0; i < 100'000; ++i) family += "\u0308";
    EXPECT_EQ(graphemeCount(family + "yz"), 3U) << "one base with 100,000 marks";
    EXPECT_EQ(graphemeCount(std::string(1'000'000, '\x80')), 1'000'000U) << "continuations without a lead";
    EXPECT_EQ(graphemeCount("\u0600" + std::string(200, '\x80')), 200U) << "joined to such a stretch";
    EXPECT_EQ(firstGraphemes("👩‍⚖️äo\u0308x", 2), "👩‍⚖️ä");
}

TEST(Characters, AreToldByTheirFirstScalar) {
    EXPECT_TRUE(isAlphabetic("o\u0308") && isAlphabetic("Ⅷ") && !isAlphabetic("_") && !isAlphabetic(" \u0308"));
    EXPECT_TRUE(isNumeric("½") && isNumeric("Ⅷ") && !isNumeric("o\u0308"));
    EXPECT_EQ(splitAtWhitespace(" § 5\u00A0BGB\r\n, E\u200Bnde\u2029"), (Texts{"§", "5", "BGB", ",", "E\u200Bnde"}));
}

TEST(TextCase, MapsFully) {
    EXPECT_EQ(uppercase("Straße ﬁ ΣΑΣ o\u0308 \xFF"), "STRASSE FI ΣΑΣ O\u0308 \uFFFD");
    EXPECT_EQ(lowercase("STRAßE ﬁ ΣΑΣ O\u0308 \xFF"), "straße ﬁ σας o\u0308 \uFFFD") << "with the final sigma";
}

// The part of Unicode that German text is made of doesn't go through ICU.
TEST(TextCase, AgreesWithIcuScalarByScalar) {
    UErrorCode status = U_ZERO_ERROR;
    const auto* normalizer = icu::Normalizer2::getNFCInstance(status);
    ASSERT_TRUE(U_SUCCESS(status));
    const auto utf8 = [](const icu::UnicodeString& wide) {
        std::string text;
        return wide.toUTF8String(text);
    };
    for (char32_t scalar = 0; scalar < 0x2200; ++scalar) {
        const icu::UnicodeString wide(static_cast<UChar32>(scalar));
        const auto text = utf8(wide);
        const auto foldedText = utf8(icu::UnicodeString(wide).foldCase());
        EXPECT_EQ(uppercase(text), utf8(icu::UnicodeString(wide).toUpper(icu::Locale::getRoot()))) << text;
        EXPECT_EQ(lowercase(text), utf8(icu::UnicodeString(wide).toLower(icu::Locale::getRoot()))) << text;
        EXPECT_TRUE(equalIgnoringCase(text, foldedText)) << text;
        EXPECT_TRUE(equalIgnoringCase("ж" + text, "Ж" + foldedText)) << text << " by way of ICU";
        EXPECT_EQ(isNfc(text), normalizer->isNormalized(wide, status) != 0) << text;
    }
}

TEST(PlainText, IsTakenManyBytesAtOnceAndMeansTheSame) {
    // Pieces that are plain, pieces that aren't, and pieces of pieces, in texts of all lengths around those of
    // the registers.
    const std::vector<std::string> pieces = {"a", "Z", "@",      "[",    " ",    "ä",    "Ö",        "ß",      "×",      "÷",
                                             "Þ", "§", "\u00A0", "–",    "„",    "€",    "\u2080",   "\u20FF", "\u2100", "Ⅷ",
                                             "Ω", "č", "𝄞",      "\xC3", "\xA4", "\xE2", "\xE2\x80", "\xC0",   "\xFF"};
    std::mt19937 random(3);
    const auto number = [&random](std::size_t most) { return std::uniform_int_distribution<std::size_t>(0, most)(random); };
    int plain = 0;
    for (int round = 0; round < 20'000; ++round) {
        const auto kinds = round % 3 == 0 ? pieces.size() - 1 : 16;
        std::string text;
        for (auto left = number(90); left > 0; --left) text += pieces[number(kinds)];
        const auto isIt = isPlainText(text, Registers::portable);
        plain += isIt ? 1 : 0;
        ASSERT_EQ(isIt, std::ranges::all_of(Graphemes(text),
                                            [](std::string_view character) {
                                                const auto scalar = firstScalar(character);
                                                return isValidUtf8(character) && (scalar < 0x100 || (scalar >= 0x2000 && scalar < 0x2100));
                                            }))
            << text;
        std::string lower(text.size(), '?');
        ASSERT_EQ(lowercasePlainText(text, lower.data(), Registers::portable), isIt) << text;
        ASSERT_EQ(isPlainText(text), isIt) << text;
        if (!isIt) continue;
        icu::UnicodeString expected = icu::UnicodeString::fromUTF8(text).toLower("");
        std::string expectedText;
        expected.toUTF8String(expectedText);
        ASSERT_EQ(lower, expectedText);
        ASSERT_TRUE(lowercasePlainText(text, lower.data())) << text;
        ASSERT_EQ(lower, expectedText) << "with the widest registers too";
    }
    EXPECT_GT(plain, 10'000);
}

TEST(TextCase, FindsIgnoringCase) {
    const std::vector<std::tuple<const char*, const char*, const char*, const char*>> rows = {
        {"§ 5 bgb x", "BGB", "bgb", "in the middle"}, {"STRASSE", "straße", "STRASSE", "what folds to more"},
        {"Maße", "ss", "ß", "what stands for it"},    {"Maße", "s", nullptr, "half a scalar isn't found"},
        {"abc", "", nullptr, "nothing is nowhere"},   {"\xFFx", "X", "x", "ill-formed bytes are no hindrance"}};
    for (const auto& [text, wanted, found, reason] : rows) {
        EXPECT_EQ(findIgnoringCase(text, wanted).value_or("(nichts)"), found ? found : "(nichts)") << reason;
    }
}

TEST(TextCase, ComparesUnderEquivalence) {
    EXPECT_EQ(nfc("Bo\u0308e \u212B"), "Böe Å");
    EXPECT_FALSE(isNfc("„acht Byte“ o\u0308")) << "a mark after a stretch that needs no look";
    EXPECT_TRUE(canonicallyEqual("\x80", "\x81")) << "both count as U+FFFD";
    EXPECT_TRUE(equalIgnoringCase("A\u0308PFELSTRASSE", "äpfelstraße"));
    EXPECT_TRUE(containsIgnoringCase("die GRO\u0308SSE", "größe"));
    EXPECT_FALSE(containsIgnoringCase("scho\u0308n", "scho")) << "half of a character is no match";
}

TEST(Trimming, GoesByItsTwoSets) {
    struct Row {
        std::string_view text, blanks, newlines;
        const char* reason;
    };
    for (const auto& row :
         {Row{" \t\u00A0x \u3000", "x", "x", "Zs and tab"}, Row{"\n x\r\n", "\n x\r\n", "x", "newlines are no blanks"},
          Row{"\u2028\u0085x\u2029\v\f", "\u2028\u0085x\u2029\v\f", "x", "every line end"},
          Row{" \u0308x ", "\u0308x", "\u0308x", "scalar by scalar, not by character"},
          Row{"\u200Bx\u200B", "\u200Bx\u200B", "\u200Bx\u200B", "a zero-width space is none"},
          Row{" \x80 \xE2\x80 ", "\x80 \xE2\x80", "\x80 \xE2\x80", "ill-formed bytes stay"}, Row{" \n", "\n", "", "nothing left"}}) {
        EXPECT_EQ(trimBlanksAndTabs(row.text), row.blanks) << row.reason;
        EXPECT_EQ(trimWhitespaceAndNewlines(row.text), row.newlines) << row.reason;
    }
}

TEST(GermanFormat, GoesByTheLocalCalendar) {
    using namespace std::chrono;
    const auto at = [](year_month_day day, milliseconds utc) { return Date(sys_days(day) + utc); };
    const auto winter = at(2026y / 3 / 14, 8h + 30min + 5s + 7ms);
    EXPECT_EQ(localFileStamp(winter), "2026-03-14 09-30-05");
    EXPECT_EQ(localLogStamp(winter), "09:30:05.007");
    EXPECT_EQ(germanTime(at(2026y / 7 / 1, 22h)), "00:00") << "summer time, next day";
    EXPECT_EQ(germanWeekday(at(2026y / 7 / 1, 22h)), "Donnerstag");
    EXPECT_EQ(localLogStamp(Date(-1ms)), "00:59:59.999") << "before 1970";
    EXPECT_EQ(germanDate(Date::min()), "21.09.1677");
    EXPECT_EQ(germanNumber(-1000), "-1.000");
    EXPECT_EQ(germanNumber(INT64_MIN), "-9.223.372.036.854.775.808");

    const auto summer = at(2026y / 4 / 1, 7h + 30min + 1ms);
    EXPECT_EQ(daysBefore(summer, 7).value(), at(2026y / 3 / 25, 8h + 30min + 1ms)) << "over the change to summer time";
    EXPECT_EQ(daysBefore(summer, INT64_MAX), std::nullopt);
    EXPECT_EQ(daysBefore(summer, -1), std::nullopt);
    EXPECT_EQ(daysBefore(Date::min(), 0), std::nullopt) << "its second begins before the first date";
}

} // namespace
} // namespace querlin
