#include "legal/ZipReader.h"
#include "support/Archives.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
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

TEST(ZipReader, TellsWhatIsWrong) {
    const std::string none = "Die Antwort ist kein ZIP-Archiv.";
    const auto damaged = [](const char* detail) { return std::string("Archiv beschädigt: ") + detail; };
    const auto whole = archiveOf({{"a.xml", "Text"}});
    auto wrongSignature = whole;
    wrongSignature[whole.find("PK\x01\x02") + 3] = 'x';
    auto noLocal = whole;
    noLocal[0] = 'x';
    auto longName = whole;
    longName[whole.find("PK\x01\x02") + 29] = '\x7F';
    auto otherText = archiveOf({{"a.xml", "§ 1814 Text", 0}});
    otherText[otherText.find("1814") + 3] = '5';
    const std::vector<std::tuple<std::string, std::string, const char*>> rows = {
        {"", none, "nothing"},
        {std::string(21, 'P'), none, "too short"},
        {"<html>Fehler</html> ohne Archiv", none, "something else"},
        {whole.substr(0, whole.size() - 22), none, "cut off"},
        {archiveOf({}), damaged("Keine Datei mit der Endung .xml im Archiv"), "no entries"},
        {archiveOf({{"a.txt", "x"}}), damaged("Keine Datei mit der Endung .xml im Archiv"), "none that fits"},
        {wrongSignature, damaged("Zentraleintrag nicht gefunden"), "no central entry"},
        {noLocal, damaged("Lokaler Dateikopf nicht gefunden"), "no local header"},
        {longName, damaged("Dateiname reicht über das Archivende hinaus"), "a name past the end"},
        {otherText, damaged("Prüfsumme stimmt nicht"), "one digit of a law"},
        {archiveOf({{"a.xml", "x", 12}}), "Unbekanntes Kompressionsverfahren im Archiv (12).", "another method"},
        {archiveOf({{"a.xml", "Text", 8, "", 5}}), damaged("Entpacken fehlgeschlagen"), "less than declared"},
        {archiveOf({{"a.xml", "Text", 8, "", 3}}), damaged("Entpacken fehlgeschlagen"), "more than declared"},
        {archiveOf({{"a.xml", "Text", 8, "", 0xFFFFFFFE}}), damaged("Entpacken fehlgeschlagen"), "four gigabytes, not asked for"},
        {archiveOf({{"a.xml", "Text", 8, "", {}, 0xFFFFFFFF}}), damaged("Datei reicht über das Archivende hinaus"), "zip64"},
        {archiveOf({{"a.xml", "x"}}, "PK\x05\x06" + std::string(18, '\0')), damaged("Keine Datei mit der Endung .xml im Archiv"),
         "a signature within the comment"}};
    for (const auto& [archive, outcome, reason] : rows) EXPECT_EQ(outcomeOf(archive), outcome) << reason;
}

TEST(ZipReader, ReadsTheArchivesOfThePortal) {
    const std::filesystem::path laws = QUERLIN_LAWS;
    if (!std::filesystem::is_directory(laws)) GTEST_SKIP() << "no real laws in " << laws;
    int count = 0;
    for (const auto& law : std::filesystem::directory_iterator(laws)) {
        std::ifstream file(law.path() / "xml.zip", std::ios::binary);
        const std::string archive(std::istreambuf_iterator<char>(file), {});
        EXPECT_TRUE(outcomeOf(archive).starts_with("<?xml")) << law.path();
        ++count;
    }
    EXPECT_GE(count, 1);
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
