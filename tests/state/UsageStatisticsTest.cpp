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
    statistics.record("noch\u00A0zwei", -4); // A no-break space separates words; a negative duration counts as 0.
    EXPECT_EQ(statistics.averageWordsPerDictation(), 3) << "2.5 rounds away from zero";
    EXPECT_NEAR(statistics.savedSeconds(), 5 / 33.0 * 60 - 2.5, 1e-9);
    statistics.reset();
    for (const auto* key : {"statsDictationCount", "statsWordCount", "statsSpokenSeconds", "statsFirstUse"})
        EXPECT_FALSE(store.contains(key)) << key;
}

} // namespace
} // namespace querlin
