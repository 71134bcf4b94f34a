// The history and its index file.

#include "state/DictationHistory.h"
#include "foundation/IsoDate.h"
#include "support/CapturedLog.h"
#include "support/HostileDisk.h"
#include "support/ManualTime.h"
#include "support/TempFolder.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace querlin {
namespace {

namespace fs = std::filesystem;

class DictationHistoryTest : public testing::Test {
protected:
    TempFolder folder;
    CapturedLog log;
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
    writeFile(folder / "ton.caf", "Ton");
    {
        DictationHistory h(base, time);
        h.record("Erster Text\n", "Mail", "Regelbasiert", std::nullopt);
        h.record("  Zweiter   Text hier ", "Writer", "Roh", folder / "ton.caf");
        h.record(" \n\t", "Mail", "Roh", folder / "ton.caf");
        h.record("Ohne Ton", "Mail", "Roh", folder / "fehlt.caf");
    }
    DictationHistory h(base, time);
    ASSERT_EQ(h.entries().size(), 3U) << "a blank text is no entry";
    EXPECT_EQ(h.entries()[1].text, "  Zweiter   Text hier ") << "newest first, untrimmed";
    EXPECT_EQ(h.entries()[1].wordCount, 3);
    EXPECT_EQ(h.totalWords(), 7);
    EXPECT_EQ(contentOf(h.audioFile(h.entries()[1]).value()), "Ton");
    EXPECT_FALSE(h.entries()[0].audioFileName) << "a recording that can't be copied loses no text";
    EXPECT_EQ(log.countOf("[history] Aufnahme nicht gesichert: "), 1U);
    EXPECT_EQ(contentOf(index).find("\"audioFileName\""), contentOf(index).rfind("\"audioFileName\"")) << "no key without audio";
    EXPECT_NE(contentOf(index).find("\"date\": \"2026-03-14T08:30:00Z\""), std::string::npos);

    fs::remove(h.audioFile(h.entries()[1]).value());
    EXPECT_FALSE(h.audioFile(h.entries()[1]));
    h.remove(h.entries()[1]);
    EXPECT_EQ(h.entries().size(), 2U);
    h.removeAll();
    EXPECT_TRUE(log.has("[history] Verlauf vollständig gelöscht."));
    EXPECT_TRUE(DictationHistory(base, time).entries().empty());
}

TEST_F(DictationHistoryTest, ExpiresByCalendarDaysWithTheRecordings) {
    writeFile(folder / "ton.caf", "Ton");
    DictationHistory h(base, time);
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
    EXPECT_EQ(h.entries().size(), 2U) << "exactly at the limit stays";
    EXPECT_TRUE(fileNames(base / "Aufnahmen").empty());
    EXPECT_TRUE(log.has("[history] 1 abgelaufene Einträge entfernt."));
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
        {std::string("\0\xff\x80", 3), "random bytes"},
        {"{}", "no array"},
        {"[" + entryText("") + R"(,{"id":"x"}])", "one bad entry"},
        {"[" + entryText(R"(,"audioFileName":3)") + "]", "a name of another type"},
        {"[" + entryText(R"(,"audioFileName":"../../.bashrc")") + "]", "a name that leads out of the folder"},
    };
    for (const auto& [content, reason] : damages) {
        writeFile(index, content);
        DictationHistory h(base, time);
        EXPECT_TRUE(h.entries().empty()) << reason;
        EXPECT_EQ(contentOf(index), content) << reason << ": reading changes nothing";
        h.record("neu", "Mail", "Roh", std::nullopt);
        EXPECT_EQ(DictationHistory(base, time).entries().size(), 1U) << reason;
        EXPECT_EQ(log.countOf("Verlauf war nicht lesbar – beiseitegelegt als Verlauf beschädigt 2026-03-14"), 1U);
        const auto names = fileNames(base);
        const auto aside = std::ranges::find_if(names, [](const auto& n) { return n.starts_with("Verlauf beschädigt"); });
        ASSERT_NE(aside, names.end()) << reason;
        EXPECT_EQ(contentOf(base / *aside), content) << reason;
        fs::remove_all(base);
        log.clear();
    }
}

TEST_F(DictationHistoryTest, ReadsForeignButValidEntries) {
    writeFile(index, "[" + entryText(R"(,"audioFileName":null,"neuerSchlüssel":[1])") + "]");
    DictationHistory h(base, time);
    ASSERT_EQ(h.entries().size(), 1U);
    EXPECT_EQ(h.entries()[0].date, *parseIsoDate("2026-03-01T09:30:00Z"));
}

TEST_F(DictationHistoryTest, WorksInMemoryWhereNothingCanBeWritten) {
    writeFile(folder / "ton.caf", "Ton");
    DictationHistory h(base, time);
    h.record("vorher", "Mail", "Roh", std::nullopt);
    {
        const FullDisk full;
        h.record("voll", "Mail", "Roh", folder / "ton.caf");
    }
    EXPECT_EQ(h.entries().size(), 2U);
    EXPECT_EQ(DictationHistory(base, time).entries().size(), 1U) << "the old index is whole";
    h.record("nachher", "Mail", "Roh", std::nullopt);
    EXPECT_EQ(DictationHistory(base, time).entries().size(), 3U) << "the next save makes it good";

    writeFile(folder / "keinOrdner", "");
    DictationHistory nowhere(folder / "keinOrdner", time);
    nowhere.record("Text", "Mail", "Roh", std::nullopt);
    EXPECT_EQ(nowhere.entries().size(), 1U);
    nowhere.removeAll();
}

TEST_F(DictationHistoryTest, ADamagedIndexThatCannotBeMovedIsNeverWrittenOver) {
    writeFile(index, "kaputt");
    {
        const ReadOnlyFolder locked(base);
        DictationHistory h(base, time);
        h.record("neu", "Mail", "Roh", std::nullopt);
        EXPECT_EQ(h.entries().size(), 1U);
    }
    EXPECT_EQ(contentOf(index), "kaputt");
}

TEST_F(DictationHistoryTest, SearchAndPreview) {
    DictationHistory h(base, time);
    h.record("Straße und Äpfel", "Mail", "Roh", std::nullopt);
    h.record("Betreuungsgericht", "LibreOffice Writer", "Roh", std::nullopt);
    struct Row {
        const char* query;
        std::size_t found;
        const char* reason;
    };
    for (const auto& row :
         {Row{" \n", 2, "blank gives all"}, Row{"äpfel", 1, "umlauts ignore case"}, Row{"A\u0308PFEL", 1, "decomposed query"},
          Row{"STRASSE", 1, "ß folds to ss"}, Row{"writer", 1, "application"}, Row{"gericht ", 1, "trimmed"}, Row{"xyz", 0, "nothing"}}) {
        EXPECT_EQ(h.search(row.query).size(), row.found) << row.reason;
    }

    const auto preview = [](std::string text) {
        DictationEntry entry;
        entry.text = std::move(text);
        return entry.preview();
    };
    std::string ninety;
    for (int i = 0; i < 90; ++i) ninety += i % 10 == 0 ? "ö" : "x";
    EXPECT_EQ(preview(ninety), ninety);
    EXPECT_EQ(preview(ninety + "y"), ninety + "…");
    EXPECT_EQ(preview("a\nb"), "a b");
}

} // namespace
} // namespace querlin
