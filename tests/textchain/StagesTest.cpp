// The smaller stages, a table each.

#include "textchain/DictationPreprocessor.h"
#include "textchain/LegalFormatting.h"
#include "textchain/Sentences.h"
#include "textchain/Tokenizer.h"
#include "textchain/Transcript.h"
#include "textchain/URLFormatting.h"

#include "Rows.h"

namespace querlin {
namespace {

TEST(Transcript, ComesInOneForm) {
    expectAll(normalizedTranscript, {{"U\u0308ber o\u0308", "Über ö", "composed"},
                                     {"a\r\nb\rc\r\r\nd", "a\nb\nc\n\nd", "line breaks"},
                                     {"a\xFF\xC3z", "a\uFFFD\uFFFDz", "ill-formed bytes"},
                                     {"\u212A", "K", "the Kelvin sign is a K"}});
}

TEST(Tokenizer, SplitsIntoRawAndNormalized) {
    const std::vector<std::tuple<std::string_view, std::vector<Tokenizer::Token>, const char*>> rows = {
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

TEST(Sentences, BeginWithACapital) {
    expectAll(capitalizeSentences, {{"ja. „gut“, 1. mai", "Ja. „Gut“, 1. Mai", "quotes and digits stand between"},
                                    {"a.\u0308 b", "A.\u0308 b", "a point with something above is none"},
                                    {"ßa. ŉb", "SSa. ʼNb", "full mapping"}});
}

TEST(DictationPreprocessor, PutsSpokenMarksWithoutAskingForNouns) {
    expectAll(DictationPreprocessor::applySpokenPunctuation,
              {{"Hallo Komma wie geht es dir FRAGEZEICHEN", "Hallo, wie geht es dir?", "in whatever case"},
               {"der Punkt ist Kommando am Treffpunkt", "der. ist Kommando am Treffpunkt", "no noun guard; letters adjoin"},
               {"Punkt, (Komma)", "., (, )", "marks beside the word stay"},
               {"erste Zeile neue Zeile zweite Zeile", "erste Zeile\nzweite Zeile", "blanks around a break go"},
               {"\t \u00A0Semi\u017Folon", "Semi\u017Folon", "a long s is an s, but for one letter"},
               {"\u212Aomma ja", ", ja", "the Kelvin sign is a k"}});
}

TEST(LegalFormatting, WritesDates) {
    expectAll(LegalFormatting::normalizeDates,
              {{"am 3. März 2024, 3 märz 2024, 3. MAERZ 2024", "am 03.03.2024, 03.03.2024, 03.03.2024", "months written out"},
               {"am 3. Mai 2024², 3.5.2024²", "am 03.05.2024², 03.05.2024²", "a footnote"},
               {"32. März 2024, 0. Mai 2024", "32. März 2024, 0. Mai 2024", "no such day"},
               {"12.13.2024 5.6.24 3. März", "12.13.2024 5.6.24 3. März", "no such month, no full year"},
               {"123. März 2024, 3. Märzen 2024, 3. Mai 20245", "123. März 2024, 3. Märzen 2024, 3. Mai 20245", "no whole words"},
               {"1. Augu\u017Ft 2024", "1. Augu\u017Ft 2024", "no month of ours"},
               {"٣. März 2024", "٣. März 2024", "digits of another script"}});
}

TEST(LegalFormatting, WritesFileNumbers) {
    expectAll(LegalFormatting::apply, {{"Aktenzeichen XVII 123 24", "Aktenzeichen XVII 123/24", "spoken"},
                                       {"Az. 10 456 / 2023; Gesch.-Nr. 5 1 24", "Az. 10 456/2023; Gesch.-Nr. 5 1/24", "all keywords"},
                                       {"Az 12 3456", "Az 12 34/56", "four digits are shared out"},
                                       {"Az X 1 24 vom 3. Mai 2024", "Az X 1/24 vom 03.05.2024", "both rules"}});
}

TEST(URLFormatting, ClosesUpAddresses) {
    using namespace URLFormatting;
    expectAll(compactURLs, {{"Siehe Www. Beispiel. Org für Details.", "Siehe www.beispiel.org für Details.", "in a sentence"},
                            {"awww. beispiel. de, www beispiel", "awww. beispiel. de, www beispiel", "no address"},
                            {"Www. Müller. De und www. a. b", "www.müller.de und www.a.b", "two of them"}});
    struct Likelihood {
        std::string text;
        bool strict, lenient;
        const char* reason;
    };
    const std::vector<Likelihood> rows = {{"Www. Beispiel. De.", true, true, "a beginning is enough"},
                                          {"Ende. Aus.", false, true, "a bare domain, where one is expected"},
                                          {"ende.außen", false, false, "no domain"},
                                          {"www." + std::string(116, 'a'), true, true, "120 characters"},
                                          {"www." + std::string(117, 'a'), false, false, "121 characters"}};
    for (const auto& [text, strict, lenient, reason] : rows) {
        EXPECT_EQ(looksLikeAddress(text, AddressTest::strict), strict) << reason;
        EXPECT_EQ(looksLikeAddress(text, AddressTest::lenient), lenient) << reason;
    }
    expectAll(compactWholeText, {{"Www. Beispiel. De..", "www.beispiel.de", "points at the end go"}, {" . ", "", "nothing left"}});
}

} // namespace
} // namespace querlin
