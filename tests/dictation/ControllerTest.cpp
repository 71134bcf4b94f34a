// The life cycle: keys, refusals, timers, small commands.

#include "support/DictationWorld.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

using Kind = DictationPhase::Kind;
using Sounds = std::vector<FeedbackSound>;
using enum FeedbackSound;

TEST(Controller, AHoldGoesThroughAllPhasesToDelivery) {
    DictationWorld w;
    w.press();
    EXPECT_EQ(w.phase(), Kind::recording);
    EXPECT_TRUE(w.windows.overlayIsVisible);
    EXPECT_EQ(w.takeSounds(), Sounds{start});
    w.services.transcriber->partial("Hallo");
    w.audio.deliver(std::vector(2048, 1.0F));
    w.wait(seconds(0.5));
    EXPECT_EQ(w.controller.livePartialText().get(), "Hallo");
    EXPECT_EQ(w.controller.inputLevel().get(), 1.0F);
    EXPECT_EQ(w.services.transcriber->appendedBuffers, 1);
    w.audio.deliver(std::vector(2048, 1.0F)); // its level is on its way when the key goes up
    w.release();
    EXPECT_EQ(w.phase(), Kind::transcribing);
    EXPECT_EQ(w.services.transcriber->appendedBuffers, 2);
    w.wait(seconds(0.4));
    EXPECT_EQ(w.phase(), Kind::inserting) << "without the model there is no enhancing";
    EXPECT_EQ(w.controller.inputLevel().get(), 0.0F);
    w.wait(seconds(0.6));
    EXPECT_EQ(w.phase(), Kind::idle);
    EXPECT_EQ(w.takeSounds(), Sounds{success});
    EXPECT_TRUE(w.windows.overlayIsVisible) << "for a moment longer";
    w.wait(seconds(0.25));
    EXPECT_FALSE(w.windows.overlayIsVisible);
    EXPECT_TRUE(w.recordings().empty());
}

TEST(Controller, RefusalsShowTheirTextForTwoSeconds) {
    struct Row {
        std::function<void(DictationWorld&)> given;
        const char* message;
        int onboardings;
        const char* reason;
    };
    const std::vector<Row> rows = {
        {[](auto& w) { w.access.microphone = AuthorizationStatus::denied; }, "Mikrofon-Zugriff fehlt", 1, "microphone"},
        {[](auto& w) { w.access.speech = AuthorizationStatus::notDetermined; }, "Spracherkennung nicht erlaubt", 1,
         "speech right of the classic recogniser"},
        {[](auto& w) { w.desktop.focus(DictationContext::FieldKind::secure); }, "Passwortfeld – hier wird nicht eingefügt", 0,
         "password field"},
        {[](auto& w) { w.services.script.beginError = TranscriptionError{TranscriptionError::Kind::unavailable, "kein Modell"}; },
         "Spracherkennung nicht verfügbar: kein Modell", 0, "recogniser"},
        {[](auto& w) { w.audio.format = {}; }, "Kein Mikrofon gefunden.", 0, "recorder"},
    };
    for (const auto& row : rows) {
        DictationWorld w;
        row.given(w);
        w.hold(seconds(1));
        EXPECT_EQ(w.controller.phase().get(), DictationPhase::error(row.message)) << row.reason;
        EXPECT_EQ(w.takeSounds(), Sounds{failure}) << row.reason;
        EXPECT_TRUE(w.windows.overlayIsVisible) << row.reason;
        EXPECT_EQ(w.windows.onboardings, row.onboardings) << row.reason;
        EXPECT_FALSE(w.recorder.isRecording()) << row.reason;
        w.wait(seconds(1.35));
        EXPECT_EQ(w.phase(), Kind::idle) << row.reason;
        EXPECT_FALSE(w.windows.overlayIsVisible) << row.reason;
    }
}

TEST(Controller, AMicrophoneThatFailsLeavesNothing) {
    DictationWorld w;
    w.audio.nextStartError = "belegt";
    w.inserter.clipboard = "etwas anderes";
    w.hold(seconds(1));
    EXPECT_EQ(w.errorText(), "Audio-Engine konnte nicht starten: belegt");
    EXPECT_TRUE(w.services.transcriber->isCancelled);
    EXPECT_TRUE(w.recordings().empty());
    w.controller.shutdown();
    EXPECT_TRUE(w.rescuedTexts().empty()) << "quitting has nothing to rescue";
    EXPECT_EQ(w.inserter.clipboard, "etwas anderes");
}

TEST(Controller, APressDuringAMessageStartsADictation) {
    for (const bool isNotice : {true, false}) {
        DictationWorld w;
        if (isNotice) {
            w.services.script.result = "";
        } else {
            w.access.microphone = AuthorizationStatus::denied;
        }
        w.hold(seconds(1));
        w.wait(seconds(0.5));
        ASSERT_EQ(w.phase(), isNotice ? Kind::notice : Kind::error);
        w.access.microphone = AuthorizationStatus::authorized;
        w.press();
        EXPECT_EQ(w.phase(), Kind::recording);
        w.wait(seconds(3));
        EXPECT_EQ(w.phase(), Kind::recording) << "the message's time has no end any more";
    }
}

TEST(Controller, AMessageHasItsOwnTime) {
    DictationWorld w;
    w.access.microphone = AuthorizationStatus::denied;
    w.press();
    w.wait(seconds(2));
    w.press();
    w.wait(seconds(2.1));
    EXPECT_EQ(w.phase(), Kind::error) << "the earlier one's time takes the later one away";
    w.wait(seconds(0.1));
    EXPECT_EQ(w.phase(), Kind::idle);
}

TEST(Controller, AHoldBelowTheMinimumLeavesNothing) {
    DictationWorld w;
    w.hold(seconds(0.34));
    EXPECT_EQ(w.phase(), Kind::idle);
    EXPECT_FALSE(w.windows.overlayIsVisible);
    EXPECT_TRUE(w.services.transcriber->isCancelled);
    EXPECT_TRUE(w.recordings().empty());
    w.hold(seconds(0.35));
    EXPECT_EQ(w.phase(), Kind::transcribing);
}

TEST(Controller, ElapsedTimeWarningAndLimit) {
    DictationWorld w;
    w.settings.maxDictationMinutes.set(6);
    w.press();
    w.wait(seconds(61.8));
    EXPECT_EQ(w.controller.elapsedDescription().get(), "1:01");
    EXPECT_FALSE(w.controller.isLongDictation().get());
    w.wait(seconds(299.5 - 61.95));
    EXPECT_FALSE(w.controller.isLongDictation().get());
    w.wait(seconds(10));
    EXPECT_TRUE(w.controller.isLongDictation().get());
    w.wait(seconds(49.9));
    EXPECT_EQ(w.phase(), Kind::recording);
    w.wait(seconds(0.6));
    EXPECT_EQ(w.phase(), Kind::transcribing);
    w.wait(seconds(5));
    EXPECT_EQ(w.inserter.delivered.size(), 1U);

    w.settings.maxDictationMinutes.set(0);
    w.press();
    EXPECT_FALSE(w.controller.isLongDictation().get());
    w.wait(std::chrono::hours(3));
    EXPECT_EQ(w.phase(), Kind::recording) << "below 1 there is no limit";
}

TEST(Controller, ChoosesTheRecogniserAndItsWords) {
    DictationWorld w;
    writeFile(w.folder.path() / VocabularyProvider::fileName,
              R"({"generated": "", "total": 1, "priorityCount": 0, "contextualCount": 1, "terms": [],
                  "contextual": ["Betreuungsgericht"]})");
    w.settings.userDictionary.set({"Nießbrauch", "Querulanz", "Sorge"});
    w.settings.language.set(DictationLanguage::english);
    w.dictate("a");
    EXPECT_EQ(w.services.transcriber->contextual.back(), "Betreuungsgericht");
    EXPECT_EQ(w.services.transcriber->begunLocale, "en-US");

    w.settings.legalVocabularyEnabled.set(false);
    w.settings.contextualLimit.set(2);
    w.settings.engine.set(TranscriptionEngine::streaming);
    w.access.speech = AuthorizationStatus::denied; // not asked for by the newer recogniser
    w.dictate("b");
    EXPECT_EQ(w.services.transcriber->contextual, (std::vector<std::string>{"Nießbrauch", "Querulanz"}));
    EXPECT_TRUE(w.log.has("[speech] Streaming-Erkenner nicht verfügbar – nutze den klassischen."));
    w.settings.contextualLimit.set(-1);
    w.services.streamingIsHere = true;
    w.dictate("c");
    EXPECT_TRUE(w.services.transcriber->contextual.empty());
    EXPECT_EQ(w.services.madeEngines,
              (std::vector{TranscriptionEngine::classic, TranscriptionEngine::classic, TranscriptionEngine::streaming}));
}

TEST(Controller, TriesTheHotkeyEveryTwoSecondsUntilItWorks) {
    DictationWorld w;
    w.holdKey.canListen = false;
    w.access.trusted = false;
    w.controller.installHotkey();
    EXPECT_TRUE(w.controller.hotkeyBlocked().get());
    EXPECT_TRUE(w.log.has("[controller] Warte auf Bedienungshilfen, prüfe alle 2 s…"));
    const auto starts = [&w] { return w.log.countOf("[hotkey] start() – "); };
    const auto before = starts();
    w.wait(seconds(10));
    EXPECT_EQ(starts(), before) << "not tried while the permission is missing";
    w.access.trusted = true;
    w.wait(seconds(4));
    EXPECT_EQ(starts(), before + 2);
    w.holdKey.canListen = true;
    w.wait(seconds(2));
    EXPECT_FALSE(w.controller.hotkeyBlocked().get());
    w.wait(seconds(10));
    EXPECT_EQ(starts(), before + 3) << "the timer has stopped";
    w.press();
    EXPECT_EQ(w.phase(), Kind::recording);
}

TEST(Controller, PassesSettingsOn) {
    DictationWorld w;
    const HotkeyConfig combo{HotkeyConfig::Mode::holdCombo, ModifierKey::fn, ComboHotkey::controlSpace};
    w.settings.hotkey.set(combo);
    w.settings.inputDeviceUID.set("usb-1");
    w.settings.contextAwareStyle.set(false);
    w.desktop.focus(DictationContext::FieldKind::secure);
    EXPECT_EQ(w.holdKey.wanted, combo);
    w.press();
    EXPECT_EQ(w.phase(), Kind::recording) << "without a look at the field there is no password field";
    EXPECT_EQ(w.audio.engines.front()->device, 7U);
    w.settings.hotkey.set(HotkeyConfig());
    w.wait(seconds(5));
    EXPECT_EQ(w.phase(), Kind::idle) << "the former key's hold has ended";
    w.settings.learnFromCorrections.set(true);
    w.desktop.setText("Herr Meier kam.");
    w.dictate("Herr Meier kam.");
    w.desktop.setText("Herr Mayer kam.");
    w.wait(seconds(3));
    EXPECT_EQ(w.windows.suggestions.size(), 1U);
}

TEST(Controller, InsertsLawTextsWhateverElseGoesOn) {
    DictationWorld w;
    w.press();
    w.controller.insertLegalText("§ 1814");
    w.wait(seconds(1));
    EXPECT_EQ(w.inserter.delivered, (std::vector<std::string>{"§ 1814"}));
    EXPECT_EQ(w.controller.lastInsertedText().get(), "§ 1814");
    EXPECT_EQ(w.phase(), Kind::recording);

    w.inserter.next = std::unexpected(InsertError::noAccessibilityPermission);
    w.controller.insertLegalText("§ 1815");
    EXPECT_EQ(w.phase(), Kind::recording) << "its failure must not end the dictation";
    EXPECT_EQ(w.rescuedTexts(), (std::vector<std::string>{"§ 1815"}));
    w.inserter.next = TextInserter::Outcome::inserted;
    w.release();
    w.wait(seconds(5));
    EXPECT_EQ(w.inserter.delivered.size(), 2U);

    w.inserter.next = std::unexpected(InsertError::noAccessibilityPermission);
    w.controller.insertLegalText("§ 1816");
    EXPECT_EQ(w.errorText(), "Ohne Zugang zu Tastatur und Eingabefeldern kann nicht eingefügt werden.");
    w.wait(seconds(3));
    w.inserter.next = TextInserter::Outcome::notInserted;
    w.controller.insertLegalText("§ 1817");
    w.wait(seconds(1));
    EXPECT_EQ(w.rescuedTexts().back(), "§ 1817");
}

} // namespace
} // namespace querlin
