// The way of one dictation: order of the stages, bookings, every failure.

#include "support/DictationWorld.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

using Kind = DictationPhase::Kind;
using Sounds = std::vector<FeedbackSound>;
using Outcome = TextInserter::Outcome;
using enum FeedbackSound;

TEST(Pipeline, StagesRunInTheirOrderUnderTheirConditions) {
    struct Row {
        std::function<void(DictationWorld&)> given;
        const char* transcript;
        const char* text;
        const char* engine;
        const char* reason;
    };
    const auto search = [](DictationWorld& w) { w.desktop.focus(DictationContext::FieldKind::search); };
    const auto local = [](DictationWorld& w) { w.settings.cleanupMode.set(CleanupMode::local); };
    const std::vector<Row> rows = {
        {[](auto&) {}, "a", "a·c·r·l·f·u", "Regelbasiert", "Aktenstil by rules"},
        {[](auto&) {}, "Baustein", "Baustein·c·r·b·l·f·u", "Regelbasiert", "text blocks"},
        {[](auto& w) { w.settings.dictationCommandsEnabled.set(false); }, "alles verwerfen", "alles verwerfen·r·l·f·u", "Regelbasiert",
         "commands off"},
        {[](auto& w) { w.settings.cleanupMode.set(CleanupMode::none); }, "a", "a·c·l·f·u", "Roh", "no cleanup"},
        {[](auto& w) { w.settings.writingStyle.set(WritingStyle::brief); }, "a", "a·c·r·l·u", "Regelbasiert",
         "no legal formatting in letters"},
        {search, "a", "a·C·l·U", "Regelbasiert", "compact text skips the rules"},
        {[](auto& w) { w.enhancer.fails = true; }, "a", "a·c·l·f·u", "Regelbasiert", "failing rules are silent"},
        {local, "a", "a·c·r·l·f·u·m·l·f", "Lokal (Apple)", "the model's text passes law and formatting again"},
        {[local](auto& w) {
             local(w);
             w.settings.writingStyle.set(WritingStyle::neutral);
         },
         "a", "a·c·r·l·u·m·l", "Lokal (Apple)", "neutral with model"},
        {[local](auto& w) {
             local(w);
             w.settings.appProfiles.set({{"com.example.mail", "Mail", WritingStyle::aktenstil, false}});
         },
         "a", "a·c·r·l·f·u", "Regelbasiert", "polish off by profile"},
    };
    for (const auto& row : rows) {
        DictationWorld w;
        row.given(w);
        w.dictate(row.transcript);
        EXPECT_EQ(w.inserter.delivered, (std::vector<std::string>{row.text})) << row.reason;
        EXPECT_EQ(w.controller.lastEngineName().get(), row.engine) << row.reason;
        EXPECT_EQ(w.history.entries().at(0).engine, row.engine) << row.reason;
    }
}

TEST(Pipeline, TellsLaterStagesWhatHasBeenDone) {
    DictationWorld w;
    w.settings.cleanupMode.set(CleanupMode::local);
    w.model.next = LanguageModel::State::loading;
    w.dictate("a");
    EXPECT_EQ(w.inserter.delivered.at(0), "a·c·r·l·f·u·l·f") << "in place of the model the rules don't run again";
    w.settings.dictationCommandsEnabled.set(false);
    w.enhancer.fails = true;
    w.dictate("a");
    EXPECT_EQ(w.enhancer.treatments, (std::vector<TextTreatment>{{true, false}, {false, false}, {false, false}}))
        << "rules that failed are tried again in place of the model";
}

TEST(Pipeline, BooksADeliveredText) {
    DictationWorld w;
    w.settings.historyKeepAudio.set(true);
    w.settings.learnFromCorrections.set(true);
    w.stages.marks = false;
    w.services.script.result = "Baustein Komma zwei";
    w.hold(seconds(2));
    w.wait(seconds(10));
    EXPECT_EQ(w.controller.lastInsertedText().get(), "Baustein Komma zwei");
    EXPECT_EQ(w.statistics.wordCount.get(), 3);
    EXPECT_EQ(w.statistics.spokenSeconds.get(), 2.0);
    ASSERT_EQ(w.history.entries().size(), 1U);
    EXPECT_EQ(w.history.entries()[0].appName, "Mail");
    EXPECT_EQ(contentOf(w.history.audioFile(w.history.entries()[0]).value()), "caff-Ton");
    EXPECT_EQ(w.log.countOf("[learn] Beobachte Korrekturen"), 1U);
    EXPECT_TRUE(w.recordings().empty());
    EXPECT_TRUE(w.log.has("[commands] angewandt: Komma, Punkt"));
    EXPECT_TRUE(w.log.has("[blocks] eingesetzt: Anhörung, Grußformel"));
    EXPECT_TRUE(w.log.has("[timing] Erkennung 0.40s · deterministisch 0.000s · gesamt 1.00s (Regelbasiert) → "
                          "Mail [com.example.mail] · Textbereich [allgemeine Einstellung]"));
    EXPECT_EQ(w.log.countOf("zwei"), 0U) << "no dictated word in the log";

    w.settings.historyEnabled.set(false);
    w.settings.learnFromCorrections.set(false);
    w.dictate("Noch eins");
    EXPECT_EQ(w.history.entries().size(), 1U);
    EXPECT_EQ(w.log.countOf("[learn] Beobachte Korrekturen"), 1U);
    EXPECT_EQ(w.statistics.dictationCount.get(), 2);
}

TEST(Pipeline, TheModelShowsItsPhaseAndItsFallback) {
    DictationWorld w;
    w.settings.cleanupMode.set(CleanupMode::local);
    w.model.fault = "kaputt";
    w.hold(seconds(1));
    w.wait(seconds(0.5));
    EXPECT_EQ(w.phase(), Kind::enhancing);
    w.press();
    EXPECT_EQ(w.phase(), Kind::enhancing) << "a press is ignored";
    w.wait(seconds(5));
    EXPECT_EQ(w.windows.notices, (std::vector<std::string>{"Lokales Modell meldete: kaputt"}));
    EXPECT_TRUE(w.log.has("[cleanup] Regelbasiert (offline) statt Lokales Modell: Lokales Modell meldete: kaputt"));
    EXPECT_EQ(w.inserter.delivered.size(), 1U);

    w.settings.appProfiles.set({{"com.example.mail", "Mail", WritingStyle::brief, false}});
    w.dictate("a");
    EXPECT_TRUE(w.log.has("[context] Feinschliff ausgelassen: Profil Mail"));
}

TEST(Pipeline, EveryFailureTreatsWordsAndAudioAsItShould) {
    struct Row {
        std::function<void(DictationWorld&)> given;
        const char* transcript;
        DictationPhase phaseAfter;
        Sounds sounds;
        std::vector<std::string> delivered;
        std::vector<std::string> rescued;
        const char* logLine;
        const char* reason;
    };
    const DictationPhase idle;
    const auto throwing = [](DictationWorld& w) { w.inserter.next = std::unexpected(InsertError::noAccessibilityPermission); };
    const std::vector<Row> rows = {
        {[](auto& w) { w.services.script.result = TranscriptionError{TranscriptionError::Kind::failed, "Dienst weg"}; },
         nullptr,
         DictationPhase::error("Transkription fehlgeschlagen: Dienst weg"),
         {failure},
         {},
         {},
         nullptr,
         "recogniser fails without a word"},
        {[](auto&) {},
         "",
         DictationPhase::notice("Nichts gehört"),
         {},
         {},
         {},
         "[pipeline] Leeres Diktat – nichts erkannt.",
         "empty transcript"},
        {[](auto& w) { w.services.script.interrupted = true; },
         "",
         DictationPhase::error("Die Spracherkennung ist ausgefallen."),
         {failure},
         {},
         {"(nur Tonaufnahme – die Spracherkennung ist ausgefallen)"},
         nullptr,
         "recogniser gives out and has not understood a word: the sound is kept"},
        {[](auto& w) { w.services.script.interrupted = true; },
         "Wort",
         idle,
         {success},
         {"Wort"},
         {"Wort"},
         "[rescue] Die Spracherkennung ist mitten im Diktat ausgefallen – 1 Wörter gerettet → Diktat 2026-03-14 09-30-03.txt",
         "recogniser gives out behind a word: delivered, and kept with its sound"},
        {[](auto&) {}, "bitte alles verwerfen", idle, {}, {}, {}, "[commands] Diktat auf Zuruf verworfen.", "discard command"},
        {[](auto& w) { w.inserter.next = Outcome::unconfirmed; },
         "Wort",
         idle,
         {success},
         {"Wort"},
         {},
         "[insert] Einfügen nicht überprüfbar.",
         "unconfirmed counts as delivered"},
        {[](auto& w) { w.inserter.next = Outcome::notInserted; },
         "Wort",
         idle,
         {failure},
         {},
         {"Wort"},
         "[rescue] Der Text kam im Zielfeld nicht an – 1 Wörter gerettet → Diktat 2026-03-14 09-30-03.txt",
         "not inserted"},
        {throwing,
         "Wort",
         idle,
         {failure},
         {},
         {"Wort"},
         "[rescue] Ohne Zugang zu Tastatur und Eingabefeldern kann nicht eingefügt werden – 1 Wörter gerettet → "
         "Diktat 2026-03-14 09-30-02.txt",
         "insertion refused"},
        {throwing,
         "streiche das",
         DictationPhase::error("Ohne Zugang zu Tastatur und Eingabefeldern kann nicht eingefügt werden."),
         {failure},
         {},
         {},
         nullptr,
         "insertion refused, nothing to insert"},
        {[](auto&) {}, "streiche das", idle, {success}, {""}, {}, nullptr, "an emptied text is delivered as such"},
        {[](auto& w) { w.stages.lawStageThrows = true; },
         "Wort",
         idle,
         {failure},
         {},
         {"Wort"},
         "[pipeline] Interner Fehler: St13runtime_error",
         "a stage breaks"},
    };
    for (const auto& row : rows) {
        DictationWorld w;
        w.settings.playStartSound.set(false);
        w.stages.marks = false;
        row.given(w);
        if (row.transcript) w.services.script.result = std::string(row.transcript);
        w.hold(seconds(2));
        w.wait(seconds(1.5));
        EXPECT_EQ(w.controller.phase().get(), row.phaseAfter) << row.reason;
        EXPECT_EQ(w.takeSounds(), row.sounds) << row.reason;
        EXPECT_EQ(w.inserter.delivered, row.delivered) << row.reason;
        EXPECT_EQ(w.rescuedTexts(), row.rescued) << row.reason;
        EXPECT_EQ(w.rescuedRecordings(), row.rescued.size()) << row.reason;
        EXPECT_EQ(w.services.notifications.size(), row.rescued.size()) << row.reason;
        EXPECT_TRUE(w.recordings().empty()) << row.reason;
        EXPECT_TRUE(!row.logLine || w.log.has(row.logLine)) << row.reason;
        EXPECT_EQ(w.history.entries().empty(), row.delivered.empty() || row.delivered[0].empty()) << row.reason;
        EXPECT_EQ(w.windows.overlayIsVisible, !row.phaseAfter.is(Kind::idle)) << row.reason;
        w.wait(seconds(5));
        EXPECT_EQ(w.phase(), Kind::idle) << row.reason;
        EXPECT_FALSE(w.windows.overlayIsVisible) << row.reason;
    }
}

TEST(Pipeline, AFailingRecogniserLosesNoWordsThatWereThere) {
    DictationWorld w;
    w.services.script.result = TranscriptionError{TranscriptionError::Kind::failed, "Dienst weg"};
    w.press();
    w.services.transcriber->partial("Sehr geehrte Frau");
    w.wait(seconds(1));
    w.release();
    w.wait(seconds(1));
    EXPECT_EQ(w.errorText(), "Transkription fehlgeschlagen: Dienst weg");
    EXPECT_EQ(w.rescuedTexts(), (std::vector<std::string>{"Sehr geehrte Frau"}));
    EXPECT_EQ(w.rescuedRecordings(), 1U);
}

TEST(Pipeline, SettingsCountFromTheMomentTheyAreRead) {
    DictationWorld w;
    w.hold(seconds(1));
    w.settings.cleanupMode.set(CleanupMode::none); // while the recogniser finishes
    w.settings.writingStyle.set(WritingStyle::brief);
    w.wait(seconds(5));
    EXPECT_EQ(w.inserter.delivered.at(0), "Hallo Welt·c·l·f·u") << "the style was fixed at the key press";
}

TEST(Pipeline, KeepsTheBestTextBesideTheRecording) {
    DictationWorld w;
    const auto sideText = [&w] {
        for (const auto& name : w.recordings()) {
            if (name.ends_with(".txt")) return contentOf(w.recordingsPath / name);
        }
        return std::string("(keiner)");
    };
    w.services.script.delay = seconds(3);
    w.press();
    EXPECT_EQ(sideText(), "(keiner)");
    w.services.transcriber->partial("eins");
    w.time.settle();
    EXPECT_EQ(sideText(), "eins") << "the first at once";
    w.services.transcriber->partial("eins zwei");
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
    w.wait(seconds(3.3));
    EXPECT_EQ(sideText(), "Hallo Welt·c·r·l·f·u") << "the finished text while it is pasted";
    w.wait(seconds(1));
    EXPECT_TRUE(w.recordings().empty());
}

} // namespace
} // namespace querlin
