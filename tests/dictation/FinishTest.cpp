// A dictation from the key's release to its end: bookings, and what happens to words and sound at every failure.

#include "foundation/Characters.h"
#include "support/DictationWorld.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

using Kind = DictationPhase::Kind;
using Sounds = std::vector<FeedbackSound>;
using Texts = std::vector<std::string>;
using Outcome = TextInserter::Outcome;
using enum FeedbackSound;

TEST(Finish, BooksADeliveredText) {
    DictationWorld w;
    w.settings.historyKeepAudio.set(true);
    w.settings.learnFromCorrections.set(true);
    w.dictate("Vorlage Anhörung Komma Zaunkönig");
    EXPECT_EQ(w.controller.lastInsertedText().get(), w.inserter.delivered.at(0));
    EXPECT_EQ(w.statistics.wordCount.get(), static_cast<std::int64_t>(countWords(w.inserter.delivered.at(0))));
    ASSERT_EQ(w.history.entries().size(), 1U);
    EXPECT_EQ(w.history.entries()[0].appName, "Mail");
    EXPECT_EQ(contentOf(w.history.audioFile(w.history.entries()[0]).value()), "caff-Ton");
    EXPECT_EQ(w.log.countOf("[learn] Beobachte Korrekturen"), 1U);
    EXPECT_TRUE(w.recordings().empty());
    w.controller.writeDiagnostics();
    for (const auto* word : {"Zaunkönig", "Anhörung", "komma"}) EXPECT_EQ(w.log.countOf(word), 0U) << "no dictated word in the log";

    w.settings.historyEnabled.set(false);
    w.settings.learnFromCorrections.set(false);
    w.dictate("Noch eins");
    EXPECT_EQ(w.history.entries().size(), 1U);
    EXPECT_EQ(w.log.countOf("[learn] Beobachte Korrekturen"), 1U);
}

TEST(Finish, AStuckModelHoldsADictationForTwelveSecondsAtMost) {
    DictationWorld w;
    w.settings.cleanupMode.set(CleanupMode::local);
    w.model.delay = std::chrono::hours(1);
    w.hold(seconds(1));
    w.wait(seconds(12));
    EXPECT_EQ(w.phase(), Kind::enhancing);
    w.press();
    EXPECT_EQ(w.phase(), Kind::enhancing) << "a press is ignored";
    w.wait(seconds(1));
    EXPECT_EQ(w.inserter.delivered, Texts{"Hallo Welt."});
    EXPECT_EQ(w.windows.notices, Texts{"Lokales Modell meldete: Die Antwort kam nicht rechtzeitig."});
}

TEST(Finish, EveryFailureTreatsWordsAndAudioAsItShould) {
    struct Row {
        std::function<void(DictationWorld&)> given;
        const char* partial;
        const char* transcript;
        DictationPhase phaseAfter;
        Sounds sounds;
        Texts delivered;
        Texts rescued;
        const char* reason;
    };
    using Error = TranscriptionError;
    const DictationPhase idle;
    const auto fails = [](DictationWorld& w) { w.services.script.result = Error{Error::Kind::failed, "Dienst weg"}; };
    const auto throwing = [](DictationWorld& w) { w.inserter.next = std::unexpected(InsertError::noAccessibilityPermission); };
    const auto nothing = DictationPhase::notice("Nichts gehört");
    const auto failed = DictationPhase::error("Transkription fehlgeschlagen: Dienst weg");
    const auto refused = DictationPhase::error(std::string(description(InsertError::noAccessibilityPermission)));
    const auto outage = DictationPhase::error("Die Spracherkennung ist ausgefallen.");
    const auto* onlySound = "(nur Tonaufnahme – die Spracherkennung ist ausgefallen)";
    const auto* lawCommand = "füge § 1814 BGB ein";
    const auto breaking = [](DictationWorld& w) { w.laws.isBroken = true; };
    const auto gaveOut = [](DictationWorld& w) { w.services.script.interrupted = true; };
    const auto plain = [](DictationWorld&) {};
    const std::vector<Row> rows = {
        {fails, "", nullptr, failed, {failure}, {}, {}, "recogniser fails without a word"},
        {fails, "Sehr geehrte", nullptr, failed, {failure}, {}, {"Sehr geehrte"}, "recogniser fails after some words"},
        {plain, "", "", nothing, {}, {}, {}, "empty transcript"},
        {plain, "äh", " \n", nothing, {}, {}, {}, "nothing after all, whatever it seemed to be at first"},
        {gaveOut, "", "", outage, {failure}, {}, {onlySound}, "recogniser gives out before a word: the sound is kept"},
        {gaveOut, "", "Wort.", idle, {success}, {"Wort."}, {"Wort."}, "recogniser gives out after a word: delivered and kept"},
        {plain, "", "bitte alles verwerfen", idle, {}, {}, {}, "discard command"},
        {[](auto& w) { w.inserter.next = Outcome::unconfirmed; }, "", "Wort.", idle, {success}, {"Wort."}, {}, "unconfirmed is delivered"},
        {[](auto& w) { w.inserter.next = Outcome::notInserted; }, "", "Wort.", idle, {failure}, {}, {"Wort."}, "not inserted"},
        {throwing, "", "Wort.", idle, {failure}, {}, {"Wort."}, "insertion refused"},
        {throwing, "", "streiche das", refused, {failure}, {}, {}, "insertion refused, nothing to insert"},
        {plain, "", "streiche das", idle, {success}, {""}, {}, "an emptied text is delivered as such"},
        {breaking, "", lawCommand, idle, {failure}, {}, {lawCommand}, "a stage breaks"},
    };
    for (const auto& row : rows) {
        DictationWorld w;
        w.settings.playStartSound.set(false);
        row.given(w);
        if (row.transcript) w.services.script.result = std::string(row.transcript);
        w.press();
        w.services.transcriber->partial(row.partial);
        w.wait(seconds(2));
        w.release();
        w.wait(seconds(1.5));
        EXPECT_EQ(w.controller.phase().get(), row.phaseAfter) << row.reason;
        EXPECT_EQ(w.takeSounds(), row.sounds) << row.reason;
        EXPECT_EQ(w.inserter.delivered, row.delivered) << row.reason;
        EXPECT_EQ(w.rescuedTexts(), row.rescued) << row.reason;
        EXPECT_EQ(w.rescuedRecordings(), row.rescued.size()) << row.reason;
        EXPECT_EQ(w.log.countOf("[rescue] "), row.rescued.size()) << row.reason;
        EXPECT_EQ(w.log.countOf("Wort."), 0U) << row.reason;
        EXPECT_EQ(w.services.notifications.size(), row.rescued.size()) << row.reason;
        EXPECT_TRUE(w.recordings().empty()) << row.reason;
        EXPECT_EQ(w.history.entries().empty(), row.delivered.empty() || row.delivered[0].empty()) << row.reason;
        EXPECT_EQ(w.windows.overlayIsVisible, !row.phaseAfter.is(Kind::idle)) << row.reason;
        w.wait(seconds(5));
        EXPECT_EQ(w.phase(), Kind::idle) << row.reason;
        EXPECT_FALSE(w.windows.overlayIsVisible) << row.reason;
    }
}

TEST(Finish, SettingsAreThoseOfTheKeyPress) {
    DictationWorld w;
    w.services.script.result = "äh am 3. März 2024";
    w.press();
    w.wait(seconds(1));
    w.settings.cleanupMode.set(CleanupMode::none);
    w.settings.writingStyle.set(WritingStyle::brief);
    w.settings.dictationCommandsEnabled.set(false);
    w.release();
    w.settings.textBlocks.set({});
    w.wait(seconds(5));
    EXPECT_EQ(w.inserter.delivered.at(0), "Am 03.03.2024.");
}

TEST(Finish, KeepsTheBestTextBesideTheRecording) {
    DictationWorld w;
    w.settings.cleanupMode.set(CleanupMode::local);
    w.model.answer = "Poliert.";
    const auto sideText = [&w] {
        for (const auto& name : w.recordings()) {
            if (name.ends_with(".txt")) return contentOf(w.recordingsPath / name);
        }
        return std::string("(keiner)");
    };
    w.services.script.delay = seconds(3);
    w.services.script.result = "hallo Welt";
    w.press();
    EXPECT_EQ(sideText(), "(keiner)");
    w.services.transcriber->partial("eins");
    w.time.settle();
    EXPECT_EQ(sideText(), "eins") << "the first at once";
    w.wait(seconds(0.5));
    w.services.transcriber->partial("eins zwei drei");
    w.time.settle();
    EXPECT_EQ(sideText(), "eins") << "at most once a second";
    w.wait(seconds(0.5));
    EXPECT_EQ(sideText(), "eins zwei drei");
    w.services.transcriber->partial("eins zwei drei vier");
    w.time.settle();
    w.release();
    EXPECT_EQ(sideText(), "eins zwei drei vier") << "the last one at the release";
    w.time.holdBackground = true;
    w.wait(seconds(3.3));
    EXPECT_EQ(sideText(), "hallo Welt") << "the transcript before the stages";
    w.time.holdBackground = false;
    w.time.settle();
    EXPECT_EQ(sideText(), "Hallo Welt.") << "what the stages made, while the model works";
    w.wait(seconds(1.6));
    EXPECT_EQ(sideText(), "Poliert.") << "the finished text, while it is pasted";
    w.wait(seconds(1));
    EXPECT_TRUE(w.recordings().empty());
}

} // namespace
} // namespace querlin
