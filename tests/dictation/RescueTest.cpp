// The rescue folder, its limits, and what the user gets to know.

#include "dictation/CrashRecovery.h"
#include "foundation/Files.h"
#include "support/DictationWorld.h"
#include "support/HostileDisk.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

std::optional<RecordingFile> recordingIn(DictationWorld& w, std::string_view audio = "Ton") {
    auto recording = RecordingFolder(w.recordingsPath).begin().value();
    if (!audio.empty()) writeFile(recording.audio(), audio);
    return recording;
}

TEST(Rescue, PutsTextOnTheClipboardAndIntoTheFolderAndTellsTheUser) {
    DictationWorld w;
    EXPECT_FALSE(w.rescue.hasEntries());
    const auto result = w.rescue.rescue("Äpfel", recordingIn(w), "Grund");
    EXPECT_EQ(w.inserter.clipboard, "Äpfel");
    EXPECT_EQ(result.textFile->filename(), "Diktat 2026-03-14 09-30-00.txt");
    EXPECT_EQ(contentOf(*result.textFile), "Äpfel");
    EXPECT_EQ(result.audioFile->filename(), "Diktat 2026-03-14 09-30-00.caf");
    EXPECT_EQ(w.services.notifications, (Texts{"Diktat nicht eingefügt: Grund. Der Text liegt in der "
                                               "Zwischenablage und im Rettungsordner."}))
        << "which may be read on a locked screen";
    EXPECT_EQ(w.log.countOf("Äpfel"), 0U);
    EXPECT_TRUE(w.rescue.hasEntries());

    w.rescue.rescue("zwei", recordingIn(w, "zwei"), "Grund");
    EXPECT_EQ(w.rescuedTexts(), (Texts{"zwei", "Äpfel"})) << "two in one second";
    EXPECT_EQ(w.rescuedRecordings(), 2U);
    EXPECT_FALSE(w.rescue.rescue("ohne Ton", recordingIn(w, ""), "Grund").audioFile);
    EXPECT_TRUE(w.recordings().empty());
}

TEST(Rescue, PrunesItsOldestWithItsRecordingAndNothingElse) {
    DictationWorld w;
    const auto now = fs::file_time_type::clock::now();
    const auto ancient = now - std::chrono::hours(10'000);
    const Texts foreign = {"Aufnahme ohne Text.caf",
                           "Diktat 2026-03-14 09-30-00 (2).caf.bak",
                           "Diktat 2026-03-14 09-30-00.docx",
                           "Diktat 2026-03-14 09-30-00 Entwurf.txt",
                           "Diktat Meier.txt",
                           "Notizen.txt"};
    for (const auto& name : foreign) {
        writeFile(w.rescueFolder.path() / name, "gehört dem Benutzer");
        fs::last_write_time(w.rescueFolder.path() / name, ancient);
    }
    EXPECT_FALSE(w.rescue.hasEntries()) << "what others have put there is no entry";
    for (int i = 0; i < 20; ++i) {
        const auto result = w.rescue.rescue(std::to_string(i), recordingIn(w), "Grund");
        fs::last_write_time(*result.textFile, now - std::chrono::hours(20 - i) + std::chrono::hours(100));
        w.wait(seconds(1));
    }
    EXPECT_EQ(fileNames(w.rescueFolder.path()).size(), 40U + foreign.size());
    // Its file is older than all others, as after a clock that was set back: it stays all the same.
    w.rescue.rescue("neu", std::nullopt, "Grund");
    const auto texts = w.rescuedTexts();
    EXPECT_EQ(std::ranges::count(texts, "neu"), 1);
    EXPECT_EQ(std::ranges::count(texts, "0"), 0);
    EXPECT_EQ(fileNames(w.rescueFolder.path()).size(), 20U + 19U + foreign.size());
    for (const auto& name : foreign) EXPECT_TRUE(fs::exists(w.rescueFolder.path() / name)) << name;
}

TEST(Rescue, AFolderThatCannotBeMadeLeavesTextAndAudioForTheNextStart) {
    DictationWorld w;
    writeFile(w.rescueFolder.path(), "eine Datei, kein Ordner");
    const auto result = w.rescue.rescue("wichtig", recordingIn(w), "Grund");
    EXPECT_FALSE(result.textFile);
    EXPECT_EQ(w.inserter.clipboard, "wichtig");
    EXPECT_EQ(w.services.notifications, (Texts{"Diktat nicht eingefügt: Grund. Der Text liegt in der Zwischenablage."}));

    fs::remove(w.rescueFolder.path());
    EXPECT_EQ(CrashRecovery::rescueLeftBehind(RecordingFolder(w.recordingsPath), w.rescueFolder, w.notifier), 1U);
    EXPECT_EQ(w.rescuedTexts(), (Texts{"wichtig"}));
    EXPECT_EQ(w.rescuedRecordings(), 1U);
}

TEST(Rescue, AFullDiskLeavesTheClipboardTheNoticeAndTheRecording) {
    DictationWorld w;
    auto recording = recordingIn(w);
    recording->keepText("halb");
    {
        const FullDisk full;
        EXPECT_FALSE(w.rescue.rescue("ganz", std::move(recording), "Grund").textFile);
    }
    EXPECT_EQ(w.inserter.clipboard, "ganz");
    EXPECT_EQ(w.services.notifications.size(), 1U);
    CrashRecovery::rescueLeftBehind(RecordingFolder(w.recordingsPath), w.rescueFolder, w.notifier);
    EXPECT_EQ(w.rescuedTexts(), (Texts{"halb"})) << "the last text that the disk took";
    EXPECT_EQ(w.rescuedRecordings(), 1U);
}

TEST(Rescue, AudioThatCannotBeMovedStaysForTheNextStart) {
    DictationWorld w;
    auto recording = recordingIn(w);
    {
        const ReadOnlyFolder locked(w.recordingsPath);
        const auto result = w.rescue.rescue("Text", std::move(recording), "Grund");
        EXPECT_FALSE(result.audioFile);
    }
    EXPECT_EQ(CrashRecovery::rescueLeftBehind(RecordingFolder(w.recordingsPath), w.rescueFolder, w.notifier), 1U);
    EXPECT_EQ(w.rescuedRecordings(), 1U);
}

TEST(CrashRecovery, BringsLeftRecordingsIntoTheFolderAndSparesTheClipboard) {
    DictationWorld w;
    w.inserter.clipboard = "etwas anderes";
    recordingIn(w)->keepText("halber Satz");
    recordingIn(w);
    recordingIn(w, "");
    w.press(); // a living recording
    EXPECT_EQ(CrashRecovery::rescueLeftBehind(RecordingFolder(w.recordingsPath), w.rescueFolder, w.notifier), 2U);
    auto texts = w.rescuedTexts();
    std::ranges::sort(texts);
    EXPECT_EQ(texts, (Texts{"(nur Tonaufnahme – nach einem Absturz gefunden)", "halber Satz"}));
    EXPECT_EQ(w.rescuedRecordings(), 2U);
    EXPECT_EQ(w.inserter.clipboard, "etwas anderes");
    EXPECT_EQ(w.services.notifications.size(), 2U);
    EXPECT_EQ(w.log.countOf("halber"), 0U);
    EXPECT_EQ(w.recordings().size(), 2U) << "only the living one's";
}

} // namespace
} // namespace querlin
