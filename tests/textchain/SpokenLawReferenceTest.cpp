#include "textchain/SpokenLawReference.h"

#include "Rows.h"

namespace querlin {
namespace {

void expectAll(const std::vector<Row>& rows) { querlin::expectAll(SpokenLawReference::normalizeReferences, rows); }

TEST(SpokenLawReference, WritesCitations) {
    expectAll(
        {{"Paragraph 1814 Absatz 2 BGB", "§ 1814 Abs. 2 BGB", "digits"},
         {"paragraf achtzehnhundertvierzehn absatz zwei satz eins bgb.", "§ 1814 Abs. 2 Satz 1 BGB.", "words; the point stays"},
         {"§ 1814 Satz 1 Ziffer 3 Absatz 2 BGB", "§ 1814 Abs. 2 Satz 1 Nr. 3 BGB", "the written order"},
         {"Paragraph 5 Absatz 1 Absatz 2", "§ 5 Abs. 2", "the last of a kind"},
         {"Paragraph 1814 a BGB und § 3 a o", "§ 1814a BGB und § 3 AO", "a letter, unless it begins a law"},
         {"Paragraph 40 SGB zwölf, § 40 S G B Zwölftes, § 40 Sozialgesetzbuch XII", "§ 40 SGB XII, § 40 SGB XII, § 40 SGB XII", "books"},
         {"Paragraph 7 bürgerliches Gesetzbuch, § 7 wohn und Betreuungsvertragsgesetz", "§ 7 BGB, § 7 WBVG", "full names"},
         {"§ 1814, BGB", "§ 1814 BGB", "inner marks go"},
         {"(Paragraph 5 BGB), „§ 6“", "(§ 5 BGB), „§ 6“", "marks around a citation stay"},
         {"Paragraph f\u0075\u0308nf BGB", "§ 5 BGB", "decomposed"}});
}

TEST(SpokenLawReference, ReadsNumbers) {
    expectAll({{"Paragraph eins vier", "§ 14", "digit by digit"},
               {"Paragraph achtzehn hundert vierzehn", "§ 1814", "one number, written apart"},
               {"Paragraph ein hundert fünf", "§ 105", "likewise, with the article's word"},
               {"Paragraph zwölf ein wichtiger", "§ 12 ein wichtiger", "an article ends a number"},
               {"nach Paragraph fünf. Zwei Zeugen", "nach § 5. Zwei Zeugen", "so does a mark"},
               {"Paragraph ein BGB, Paragraph ein Absatz zwei", "§ 1 BGB, § 1 Abs. 2", "unless the citation goes on"}});
}

TEST(SpokenLawReference, LeavesWhatItCantRead) {
    expectAll({{"Paragraph hier, § 1814a BGB", "Paragraph hier, § 1814a BGB", "no number"},
               {"Paragraph 1814 Absatz BGB", "§ 1814 Absatz BGB", "a unit without number"},
               {"Paragraph 40 S G B", "§ 40 S G B", "nor after letters, which belong to no section"},
               {"Paragraph 40 S G B dreizehn", "§ 40 S G B dreizehn", "no such book"}});
}

TEST(SpokenLawReference, EveryWrittenCitationReadsAsItself) {
    for (const auto* law :
         {"BGB", "FamFG", "BtOG", "VBVG", "WBVG", "ZPO", "InsO", "SGG", "VwVfG", "WoGG", "RBEG", "StGB", "SGB I", "SGB XIV"}) {
        const LawReference reference{law, "1814a", "2", "3", "4"};
        EXPECT_EQ(reference.formatted(), std::string("§ 1814a Abs. 2 Satz 3 Nr. 4 ") + law);
        const auto written = LawReference{law, "1814", "2", std::nullopt, "4"}.formatted();
        EXPECT_EQ(SpokenLawReference::normalizeReferences("§ 1814 Nummer vier Absatz zwei " + std::string(law)), written);
    }
}

} // namespace
} // namespace querlin
