// Who answers for a recording, and what a dead process leaves.

#include "state/RecordingFolder.h"
#include "support/TempFolder.h"

#include <csignal>

#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace querlin {
namespace {

class RecordingFolderTest : public testing::Test {
protected:
    TempFolder folder;
    std::filesystem::path path = folder / "Querlin";
    RecordingFolder recordings{path};

    /// Leaves a recording as a process does that dies.
    void leave(std::string_view audio, std::string_view text) {
        const auto recording = recordings.begin().value();
        if (!audio.empty()) writeFile(recording.audio(), audio);
        if (!text.empty()) recording.keepText(text);
    }
};

TEST_F(RecordingFolderTest, DiscardingAndMovingLeaveNothing) {
    auto first = recordings.begin().value();
    writeFile(first.audio(), "Ton");
    first.keepText("eins");
    first.keepText("eins zwei");
    EXPECT_EQ(first.text(), "eins zwei");
    EXPECT_TRUE(recordings.leftBehind().empty()) << "its owner lives";
    first.discard();
    first.discard();

    auto second = recordings.begin().value();
    writeFile(second.audio(), "Ton");
    second.keepText("Text");
    EXPECT_FALSE(second.moveAudio(folder / "fehlt/x.caf"));
    EXPECT_TRUE(std::filesystem::exists(second.audio())) << "a failed move loses nothing";
    EXPECT_TRUE(second.moveAudio(folder / "x.caf"));
    EXPECT_TRUE(fileNames(path).empty());
    EXPECT_EQ(contentOf(folder / "x.caf"), "Ton");
}

TEST_F(RecordingFolderTest, FindsWhatWasLeftInAnyCombination) {
    leave("Ton", "Text");
    leave("Ton", "");
    leave("", "nur Text");
    leave("", "");
    writeFile(path / "dictation-kein-uuid.caf", "fremd");
    writeFile(path / "notizen.txt", "fremd");
    auto found = recordings.leftBehind();
    ASSERT_EQ(found.size(), 3U);
    EXPECT_TRUE(recordings.leftBehind().empty()) << "the finder is the owner now";
    for (auto& recording : found) recording.discard();
    EXPECT_EQ(fileNames(path), (std::vector<std::string>{"dictation-kein-uuid.caf", "notizen.txt"}));
}

TEST_F(RecordingFolderTest, ALivingProcessKeepsItsRecordingUntilItDies) {
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const auto child = ::fork();
    if (child == 0) {
        const auto recording = recordings.begin().value();
        writeFile(recording.audio(), "Ton");
        [[maybe_unused]] const auto written = ::write(ready[1], "x", 1);
        ::pause();
        ::_exit(0);
    }
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    leave("Ton", "");
    EXPECT_EQ(recordings.leftBehind().size(), 1U) << "the dead one's, not the living one's";
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_EQ(recordings.leftBehind().size(), 2U);
    ::close(ready[0]);
    ::close(ready[1]);
}

} // namespace
} // namespace querlin
