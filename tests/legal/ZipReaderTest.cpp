#include "legal/ZipReader.h"
#include "support/Archives.h"

#include <algorithm>
#include <random>

#include <gtest/gtest.h>

namespace querlin {
namespace {

using Entry = ArchivedFile;

std::string outcomeOf(std::string_view archive) {
    const auto file = ZipReader::firstFile(archive, ".xml");
    return file ? *file : file.error().description();
}

TEST(ZipReader, GivesTheFirstWantedFile) {
    const Entry law{"BJNR.XML", "<dokumente/>"};
    EXPECT_EQ(outcomeOf(archiveOf({{"bild.gif", "x", 0}, law, {"b.xml", "<b/>"}})), "<dokumente/>")
        << "in central order, whatever the case";
    EXPECT_EQ(outcomeOf(archiveOf({{"a.xml", "roh", 0}})), "roh") << "stored";
    EXPECT_EQ(outcomeOf(archiveOf({{"a.xml", ""}})), "") << "empty";
    EXPECT_EQ(outcomeOf(archiveOf({{"a.xml", "ja", 8, std::string(300, 'e')}})), "ja") << "a longer local extra field";
    EXPECT_EQ(outcomeOf(archiveOf({law}, std::string(65'535, 'k'))), "<dokumente/>") << "the longest comment";
    EXPECT_EQ(outcomeOf(archiveOf({{"\xFF.xml", "ja"}})), "ja") << "a name in no known encoding";
}

TEST(ZipReader, RefusesWhatIsDamagedOrHostile) {
    const auto whole = archiveOf({{"a.xml", "Text"}});
    auto wrongSignature = whole;
    wrongSignature[whole.find("PK\x01\x02") + 3] = 'x';
    auto noLocal = whole;
    noLocal[0] = 'x';
    auto longName = whole;
    longName[whole.find("PK\x01\x02") + 29] = '\x7F';
    auto otherText = archiveOf({{"a.xml", "§ 1814 Text", 0}});
    otherText[otherText.find("1814") + 3] = '5';
    const std::vector<std::pair<std::string, const char*>> rows = {
        {"", "nothing"},
        {"<html>Fehler</html> ohne Archiv", "something else"},
        {whole.substr(0, whole.size() - 22), "cut off"},
        {archiveOf({{"a.txt", "x"}}), "none that fits"},
        {wrongSignature, "no central entry"},
        {noLocal, "no local header"},
        {longName, "a name past the end"},
        {otherText, "one digit of a law"},
        {archiveOf({{"a.xml", "x", 12}}), "another method"},
        {archiveOf({{"a.xml", "Text", 8, "", 5}}), "less than declared"},
        {archiveOf({{"a.xml", "Text", 8, "", 3}}), "more than declared"},
        {archiveOf({{"a.xml", "Text", 8, "", 0xFFFFFFFE}}), "four gigabytes, not asked for"},
        {archiveOf({{"a.xml", "Text", 8, "", {}, 0xFFFFFFFF}}), "zip64"},
        {archiveOf({{"a.xml", "x"}}, "PK\x05\x06" + std::string(18, '\0')), "a signature within the comment"}};
    EXPECT_TRUE(ZipReader::firstFile(whole, ".xml"));
    for (const auto& [archive, reason] : rows) EXPECT_FALSE(ZipReader::firstFile(archive, ".xml")) << reason;
}

TEST(ZipReader, NoDamageMakesAnotherText) {
    const std::vector<Entry> files = {{"a.txt", "x", 0}, {"b.xml", std::string(2000, 'b')}, {"c.xml", "c"}};
    const auto whole = archiveOf(files, "Anmerkung");
    std::mt19937 random(2);
    for (int round = 0; round < 20'000; ++round) {
        auto archive = whole;
        for (int i = 0; i < 1 + round % 4; ++i)
            archive[std::uniform_int_distribution<std::size_t>(0, archive.size() - 1)(random)] = static_cast<char>(random());
        if (round % 3 == 0) archive.resize(std::uniform_int_distribution<std::size_t>(0, archive.size())(random));
        const auto file = ZipReader::firstFile(archive, ".xml");
        ASSERT_TRUE(!file || std::ranges::find(files, *file, &Entry::content) != files.end()) << round;
    }
}

} // namespace
} // namespace querlin
