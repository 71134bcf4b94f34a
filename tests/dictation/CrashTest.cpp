// Kills a process in the middle of a dictation, again and again, and starts anew.

#include "dictation/CrashRecovery.h"
#include "support/KilledChild.h"
#include "support/ManualTime.h"
#include "support/TempFolder.h"

#include <random>

#include <gtest/gtest.h>

namespace querlin {
namespace {

TEST(Crash, AKilledDictationIsFoundAtTheNextStart) {
    constexpr int kills = 220;
    std::mt19937 random(20261122);
    std::uniform_int_distribution<int> microseconds(0, 70'000);
    ManualTime time;
    int withText = 0;
    int afterDelivery = 0;
    for (int i = 0; i < kills && !testing::Test::HasFailure(); ++i) {
        const TempFolder folder;
        // Some wait for the delivery, so that the moments after it are met on a slow machine too.
        const bool waitsForDelivery = i % 8 == 1;
        const char* outcome = i % 3 == 0 && !waitsForDelivery ? "rescued" : "delivered";
        const std::chrono::microseconds delay(waitsForDelivery ? microseconds(random) / 20 : microseconds(random));
        const auto seen = killedAfter(waitsForDelivery ? 'd' : 'r', {QUERLIN_CRASH_CHILD, folder.path(), outcome}, delay);
        ASSERT_TRUE(seen.starts_with('r')) << "the child must get as far as recording";

        RescueFolder rescueFolder(folder / "Gerettete Diktate", time);
        Notifier notifier(nullptr);
        const RecordingFolder recordings(folder / "Aufnahme");
        CrashRecovery::rescueLeftBehind(recordings, rescueFolder, notifier);

        auto rescued = fileNames(rescueFolder.path());
        std::erase_if(rescued, [](const auto& name) { return name.starts_with('.'); }); // unfinished writes
        if (seen.find('d') == std::string::npos) {
            EXPECT_FALSE(rescued.empty()) << "kill " << i << ": neither delivered nor rescued";
        }
        EXPECT_TRUE(seen != "rde" || rescued.empty()) << "kill " << i << ": delivered and over";
        for (const auto& name : rescued) {
            const auto content = contentOf(rescueFolder.path() / name);
            EXPECT_FALSE(content.empty()) << name;
            if (content.starts_with("Teil ") || content.starts_with("Hallo Welt")) ++withText;
        }
        if (seen.find('d') != std::string::npos) ++afterDelivery;
        EXPECT_TRUE(recordings.leftBehind().empty());
        EXPECT_EQ(CrashRecovery::rescueLeftBehind(recordings, rescueFolder, notifier), 0U);
    }
    // Otherwise the kills have not met the interesting moments.
    EXPECT_GT(withText, kills / 10);
    EXPECT_GE(afterDelivery, kills / 8);
}

} // namespace
} // namespace querlin
