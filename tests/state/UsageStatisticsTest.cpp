#include "state/UsageStatistics.h"
#include "support/ManualTime.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

TEST(UsageStatistics, AddsUpAndForgetsOnReset) {
    const TempFolder folder;
    ManualTime time;
    PreferencesStore store(folder / "s.json", time.runtime());
    UsageStatistics statistics(store, time);
    statistics.record(" \n ", 100);
    EXPECT_FALSE(statistics.firstUse.get()) << "no words, no dictation";
    statistics.record("drei kleine Wörter", 2.5);
    time.advance(seconds(60));
    statistics.record("noch\u00A0zwei", -4); // A no-break space separates words; a negative duration counts as 0.
    EXPECT_EQ(statistics.firstUse.get(), time.now() - seconds(60));
    EXPECT_EQ(statistics.averageWordsPerDictation(), 3) << "2.5 rounds away from zero";
    EXPECT_NEAR(statistics.savedSeconds(), 5 / 33.0 * 60 - 2.5, 1e-9);
    statistics.record("kurz", 1000);
    EXPECT_EQ(statistics.savedSeconds(), 0);
    statistics.reset();
    for (const auto* key : {"statsDictationCount", "statsWordCount", "statsSpokenSeconds", "statsFirstUse"})
        EXPECT_FALSE(store.contains(key)) << key;
}

TEST(UsageStatistics, DescribesSpansInWords) {
    const std::vector<std::pair<double, const char*>> rows = {
        {0, "0 Sekunden"}, {1, "1 Sekunden"},           {59.4, "59 Sekunden"},        {59.5, "1 Minute"},           {3600, "1 Stunde"},
        {119, "1 Minute"}, {3660, "1 Stunde 1 Minute"}, {7260, "2 Stunden 1 Minute"}, {7380, "2 Stunden 3 Minuten"}};
    for (const auto& [seconds, text] : rows) EXPECT_EQ(UsageStatistics::describe(seconds), text) << seconds;
}

} // namespace
} // namespace querlin
