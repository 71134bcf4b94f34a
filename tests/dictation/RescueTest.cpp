// The rescue folder, its limits, and what is told to the user.

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
                                               "Zwischenablage und im Rettungsordner.\n\n„Äpfel…“"}));
    EXPECT_TRUE(w.log.has("[rescue] Grund – 1 Wörter gerettet → Diktat 2026-03-14 09-30-00.txt"));
    EXPECT_TRUE(w.rescue.hasEntries());
}

TEST(Rescue, KeepsSimultaneousRescuesApart) {
    DictationWorld w;
    for (const auto* text : {"eins", "zwei", "drei"}) w.rescue.rescue(text, recordingIn(w, text), "Grund");
    EXPECT_EQ(fileNames(w.rescueFolder.path()),
              (Texts{"Diktat 2026-03-14 09-30-00 (2).caf", "Diktat 2026-03-14 09-30-00 (2).txt", "Diktat 2026-03-14 09-30-00 (3).caf",
                     "Diktat 2026-03-14 09-30-00 (3).txt", "Diktat 2026-03-14 09-30-00.caf", "Diktat 2026-03-14 09-30-00.txt"}));
    EXPECT_EQ(w.rescuedTexts(), (Texts{"zwei", "drei", "eins"}));
}

TEST(Rescue, ShowsTheFirstCharactersOfALongText) {
    DictationWorld w;
    std::string text;
    for (int i = 0; i < 130; ++i) text += "u\u0308"; // one character of two scalars
    w.rescue.rescue(text, std::nullopt, "Grund");
    const auto& body = w.services.notifications.at(0);
    EXPECT_NE(body.find("„" + text.substr(0, 120 * 3) + "…“"), std::string::npos);
}

TEST(Rescue, PrunesTheOldestWithItsRecordingAndNothingElse) {
    DictationWorld w;
    writeFile(w.rescueFolder.path() / "Aufnahme ohne Text.caf", "Ton");
    EXPECT_FALSE(w.rescue.hasEntries()) << "audio alone is no entry";
    const auto now = fs::file_time_type::clock::now();
    for (int i = 0; i < 20; ++i) {
        const auto result = w.rescue.rescue(std::to_string(i), recordingIn(w), "Grund");
        fs::last_write_time(*result.textFile, now - std::chrono::hours(20 - i) + std::chrono::hours(100));
        w.wait(seconds(1));
    }
    EXPECT_EQ(w.rescuedTexts().size(), 20U);
    // Its file is older than all others, as after a clock set back: it stays all the same.
    w.rescue.rescue("neu", std::nullopt, "Grund");
    const auto texts = w.rescuedTexts();
    EXPECT_EQ(texts.size(), 20U);
    EXPECT_EQ(std::ranges::count(texts, "neu"), 1);
    EXPECT_EQ(std::ranges::count(texts, "0"), 0);
    EXPECT_EQ(w.rescuedRecordings(), 19U + 1U) << "the oldest recording has gone, the lone one stays";
}

TEST(Rescue, AFolderThatCannotBeMadeLeavesTextAndAudioForTheNextStart) {
    DictationWorld w;
    writeFile(w.rescueFolder.path(), "eine Datei, kein Ordner");
    const auto result = w.rescue.rescue("wichtig", recordingIn(w), "Grund");
    EXPECT_FALSE(result.textFile);
    EXPECT_EQ(w.inserter.clipboard, "wichtig");
    EXPECT_EQ(w.services.notifications, (Texts{"Diktat nicht eingefügt: Grund. Der Text liegt in der Zwischenablage.\n\n„wichtig…“"}));
    EXPECT_EQ(w.log.countOf("[rescue] Rettungsordner nicht anlegbar: Statt eines Ordners liegt dort eine Datei"), 1U);

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
    EXPECT_EQ(w.log.countOf("[rescue] Text nicht schreibbar: "), 1U);
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
    EXPECT_EQ(w.log.countOf("[rescue] Tonspur nicht sicherbar: "), 1U);
    EXPECT_EQ(CrashRecovery::rescueLeftBehind(RecordingFolder(w.recordingsPath), w.rescueFolder, w.notifier), 1U);
    EXPECT_EQ(w.rescuedRecordings(), 1U);
}

TEST(Rescue, MissingAudioIsNoFailure) {
    DictationWorld w;
    const auto result = w.rescue.rescue("Text", recordingIn(w, ""), "Grund");
    EXPECT_TRUE(result.textFile);
    EXPECT_FALSE(result.audioFile);
    EXPECT_TRUE(w.recordings().empty());
}

TEST(Rescue, WorksWithoutANotificationService) {
    DictationWorld w;
    Notifier none(nullptr);
    none.requestAuthorizationIfNeeded();
    DictationRescue rescue(w.rescueFolder, w.inserter, none);
    EXPECT_TRUE(rescue.rescue("Text", std::nullopt, "Grund").textFile);
    w.services.authorization = std::unexpected("kein Dienst");
    Notifier asks(&w.services);
    asks.requestAuthorizationIfNeeded();
    asks.requestAuthorizationIfNeeded();
    EXPECT_EQ(w.log.countOf("[notify] Berechtigung fehlgeschlagen: kein Dienst"), 1U);
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
    EXPECT_EQ(w.log.countOf("[rescue] Nach einem Absturz gefunden – 2 Wörter gerettet → Diktat"), 1U);
    EXPECT_EQ(w.services.notifications.size(), 2U);
    EXPECT_EQ(w.recordings().size(), 2U) << "only the living one's";
}

} // namespace
} // namespace querlin
