// The history and its index file.

#include "state/DictationHistory.h"
#include "support/HostileDisk.h"
#include "support/ManualTime.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

namespace fs = std::filesystem;

class DictationHistoryTest : public testing::Test {
protected:
    TempFolder folder;
    ManualTime time;
    fs::path base = folder / "Querlin";
    fs::path index = base / "Verlauf.json";

    static std::string entryText(std::string_view members) {
        return R"({"id":"3F2504E0-4F89-41D3-9A0C-0305E82C3301","date":"2026-03-01T09:30:00Z","text":"alt",)"
               R"("appName":"Mail","engine":"Roh","wordCount":1)" +
               std::string(members) + "}";
    }
};

TEST_F(DictationHistoryTest, KeepsEntriesAndRecordingsOverARestart) {
    {
        DictationHistory h(base, time.runtime());
        h.record("Erster Text\n", "Mail", "Regelbasiert", std::nullopt);
        for (const auto* text : {"  Zweiter   Text hier ", " \n\t"}) {
            writeFile(folder / "ton.caf", "Ton");
            h.record(text, "Writer", "Roh", folder / "ton.caf");
            fs::remove(folder / "ton.caf"); // As the run does, at once.
        }
        h.record("Ohne Ton", "Mail", "Roh", folder / "fehlt.caf");
        EXPECT_FALSE(fs::exists(index)) << "not on the main thread";
        time.settle();
        EXPECT_TRUE(fs::exists(index)) << "and without any delay";
    }
    DictationHistory h(base, time.runtime());
    ASSERT_EQ(h.entries().size(), 3U) << "a blank text is no entry";
    EXPECT_EQ(h.entries()[1].text, "  Zweiter   Text hier ") << "newest first, untrimmed";
    EXPECT_EQ(contentOf(h.audioFile(h.entries()[1]).value()), "Ton");
    EXPECT_FALSE(h.entries()[0].audioFileName) << "a recording that can't be kept loses no text";
    EXPECT_NE(contentOf(index).find("\"date\": \"2026-03-14T08:30:00Z\""), std::string::npos);

    h.remove(h.entries()[1]);
    time.settle();
    EXPECT_EQ(h.entries().size(), 2U);
    EXPECT_TRUE(fileNames(base / "Aufnahmen").empty());
    h.removeAll();
    h.flush();
    EXPECT_TRUE(DictationHistory(base, time.runtime()).entries().empty());
}

TEST_F(DictationHistoryTest, ARecordingOfAnotherFileSystemIsCopiedInTheBackground) {
    const fs::path elsewhere = "/var/tmp/querlin-test-ton.caf";
    writeFile(elsewhere, "Ton");
    fs::create_directories(base);
    std::error_code noLinks;
    fs::create_hard_link(elsewhere, base / "x", noLinks);
    if (!noLinks) GTEST_SKIP() << "no second file system here";
    DictationHistory h(base, time.runtime());
    time.holdBackground = true;
    h.record("mit Ton", "Mail", "Roh", elsewhere);
    h.record("gelöscht", "Mail", "Roh", elsewhere);
    h.remove(h.entries()[0]);
    fs::remove(elsewhere); // As the run does, at once.
    time.holdBackground = false;
    time.settle();
    EXPECT_EQ(contentOf(h.audioFile(h.entries()[0]).value()), "Ton");
    EXPECT_EQ(fileNames(base / "Aufnahmen").size(), 1U) << "what was deleted meanwhile doesn't come back";

    writeFile(elsewhere, "Ton");
    const FullDisk full;
    h.record("zu viel", "Mail", "Roh", elsewhere);
    fs::remove(elsewhere);
    EXPECT_TRUE(h.entries()[0].audioFileName);
    time.settle();
    EXPECT_FALSE(h.entries()[0].audioFileName) << "a copy that failed";
}

TEST_F(DictationHistoryTest, ExpiresByCalendarDaysWithTheRecordings) {
    writeFile(folder / "ton.caf", "Ton");
    DictationHistory h(base, time.runtime());
    h.setRetentionDays(0);
    const auto days = [this](int count) { time.setDate(time.now() + std::chrono::days(count)); };
    h.record("uralt", "Mail", "Roh", folder / "ton.caf");
    days(1);
    h.record("an der Grenze", "Mail", "Roh", std::nullopt);
    days(4000);
    h.record("neu", "Mail", "Roh", std::nullopt);
    EXPECT_EQ(h.entries().size(), 3U) << "0 keeps everything";
    time.setDate(h.entries()[1].date + std::chrono::days(30) - std::chrono::hours(1)); // Summer time began in between.
    h.setRetentionDays(30);
    time.settle();
    EXPECT_EQ(h.entries().size(), 2U) << "exactly at the limit stays";
    EXPECT_TRUE(fileNames(base / "Aufnahmen").empty());
    time.advance(seconds(1));
    h.record("noch einer", "Mail", "Roh", std::nullopt);
    EXPECT_EQ(h.entries().back().text, "neu") << "one second later it goes";
    h.setRetentionDays(INT64_MAX);
    EXPECT_EQ(h.entries().size(), 2U) << "more days than the calendar has";
}

TEST_F(DictationHistoryTest, AnIndexThatCannotBeUsedIsSetAsideBeforeTheFirstWrite) {
    const std::vector<std::pair<std::string, const char*>> damages = {
        {"", "empty"},
        {"[" + entryText("") + ",", "truncated"},
        {"{}", "no array"},
        {"[" + entryText("") + R"(,{"id":"x"}])", "one bad entry"},
        {"[" + entryText(R"(,"audioFileName":"../../.bashrc")") + "]", "a name that leads out of the folder"},
    };
    for (const auto& [content, reason] : damages) {
        writeFile(index, content);
        {
            DictationHistory h(base, time.runtime());
            EXPECT_TRUE(h.entries().empty()) << reason;
            EXPECT_EQ(contentOf(index), content) << reason << ": reading changes nothing";
            h.record("neu", "Mail", "Roh", std::nullopt);
            time.settle();
            h.record("noch eins", "Mail", "Roh", std::nullopt);
        }
        EXPECT_EQ(DictationHistory(base, time.runtime()).entries().size(), 2U) << reason;
        const auto names = fileNames(base);
        ASSERT_EQ(names.size(), 2U) << reason;
        EXPECT_TRUE(names[0].starts_with("Verlauf beschädigt 2026-03-14")) << names[0];
        EXPECT_EQ(contentOf(base / names[0]), content) << reason;
        fs::remove_all(base);
    }
    writeFile(index, "[" + entryText(R"(,"audioFileName":null,"neuerSchlüssel":[1])") + "]");
    EXPECT_EQ(DictationHistory(base, time.runtime()).entries().size(), 1U) << "foreign but valid";
}

TEST_F(DictationHistoryTest, AFailedWriteIsReportedAndMadeGood) {
    DictationHistory h(base, time.runtime());
    const auto record = [&](const char* text) {
        h.record(text, "Mail", "Roh", std::nullopt);
        time.settle();
    };
    record("vorher");
    {
        const FullDisk full;
        record("voll");
    }
    EXPECT_TRUE(h.trouble().get());
    EXPECT_EQ(DictationHistory(base, time.runtime()).entries().size(), 1U) << "the old index is whole";
    record("nachher");
    EXPECT_FALSE(h.trouble().get());
    EXPECT_EQ(DictationHistory(base, time.runtime()).entries().size(), 3U) << "the next save makes it good";
}

TEST_F(DictationHistoryTest, ADamagedIndexThatCannotBeMovedIsNeverWrittenOver) {
    writeFile(index, "kaputt");
    {
        const ReadOnlyFolder locked(base);
        DictationHistory h(base, time.runtime());
        h.record("neu", "Mail", "Roh", std::nullopt);
        time.settle();
        EXPECT_TRUE(h.trouble().get());
    }
    EXPECT_EQ(contentOf(index), "kaputt");
}

TEST_F(DictationHistoryTest, SearchFoldsCaseAndForms) {
    DictationHistory h(base, time.runtime());
    h.record("Straße und Äpfel", "Mail", "Roh", std::nullopt);
    h.record("Betreuungsgericht", "LibreOffice Writer", "Roh", std::nullopt);
    for (const auto& [query, found] : std::vector<std::pair<const char*, std::size_t>>{
             {" \n", 2}, {"A\u0308PFEL", 1}, {"STRASSE", 1}, {"writer", 1}, {"gericht ", 1}, {"xyz", 0}})
        EXPECT_EQ(h.search(query).size(), found) << query;
}

} // namespace
} // namespace querlin
