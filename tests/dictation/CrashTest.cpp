// Kills a process in the middle of a dictation, again and again, and starts anew.

#include "dictation/CrashRecovery.h"
#include "support/ManualTime.h"
#include "support/TempFolder.h"

#include <array>
#include <csignal>
#include <random>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace querlin {
namespace {

/// Runs a dictation in a child process, kills it `delay` after it has told `sign`, and gives all that
/// it had told by then.
std::string killedAfter(char sign, const std::filesystem::path& folder, const char* outcome, std::chrono::microseconds delay) {
    std::array<int, 2> pipe{};
    EXPECT_EQ(::pipe2(pipe.data(), O_CLOEXEC), 0);
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipe[1], STDOUT_FILENO);
    std::string program = QUERLIN_CRASH_CHILD;
    std::string folderText = folder.string();
    std::string outcomeText = outcome;
    std::array<char*, 4> arguments = {program.data(), folderText.data(), outcomeText.data(), nullptr};
    pid_t child = 0;
    EXPECT_EQ(::posix_spawn(&child, program.c_str(), &actions, nullptr, arguments.data(), environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    ::close(pipe[1]);

    std::string told;
    char next = 0;
    while (!told.ends_with(sign) && ::read(pipe[0], &next, 1) == 1) told += next;
    std::this_thread::sleep_for(delay);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    while (::read(pipe[0], &next, 1) == 1) told += next;
    ::close(pipe[0]);
    return told;
}

TEST(Crash, AKilledDictationIsFoundAtTheNextStart) {
    constexpr int kills = 220;
    std::mt19937 random(20261122);
    std::uniform_int_distribution<int> microseconds(0, 70'000);
    ManualTime time;
    int withText = 0;
    int afterDelivery = 0;
    for (int i = 0; i < kills && !testing::Test::HasFailure(); ++i) {
        const TempFolder folder;
        // Some wait for the delivery, so that the moments behind it are met on a slow machine too.
        const bool waitsForDelivery = i % 8 == 1;
        const char* outcome = i % 3 == 0 && !waitsForDelivery ? "rescued" : "delivered";
        const std::chrono::microseconds delay(waitsForDelivery ? microseconds(random) / 20 : microseconds(random));
        const auto told = killedAfter(waitsForDelivery ? 'd' : 'r', folder.path(), outcome, delay);
        ASSERT_TRUE(told.starts_with('r')) << "the child must get as far as recording";

        RescueFolder rescueFolder(folder / "Gerettete Diktate", time);
        Notifier notifier(nullptr);
        const RecordingFolder recordings(folder / "Aufnahme");
        CrashRecovery::rescueLeftBehind(recordings, rescueFolder, notifier);

        auto rescued = fileNames(rescueFolder.path());
        std::erase_if(rescued, [](const auto& name) { return name.starts_with('.'); }); // unfinished writes
        if (told.find('d') == std::string::npos) {
            EXPECT_FALSE(rescued.empty()) << "kill " << i << ": neither delivered nor rescued";
        }
        EXPECT_TRUE(told != "rde" || rescued.empty()) << "kill " << i << ": delivered and over";
        for (const auto& name : rescued) {
            const auto content = contentOf(rescueFolder.path() / name);
            EXPECT_FALSE(content.empty()) << name;
            if (content.starts_with("Teil ") || content.starts_with("Hallo Welt")) ++withText;
        }
        if (told.find('d') != std::string::npos) ++afterDelivery;
        EXPECT_TRUE(recordings.leftBehind().empty());
        EXPECT_EQ(CrashRecovery::rescueLeftBehind(recordings, rescueFolder, notifier), 0U);
    }
    // Otherwise the kills have not met the interesting moments.
    EXPECT_GT(withText, kills / 10);
    EXPECT_GE(afterDelivery, kills / 8);
}

} // namespace
} // namespace querlin
