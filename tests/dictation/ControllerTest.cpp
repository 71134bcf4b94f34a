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
        {[](auto& w) { w.audio.nextStartError = "belegt"; }, "Audio-Engine konnte nicht starten: belegt", 0, "busy microphone"},
    };
    for (const auto& row : rows) {
        DictationWorld w;
        row.given(w);
        w.inserter.clipboard = "etwas anderes";
        w.hold(seconds(1));
        EXPECT_EQ(w.controller.phase().get(), DictationPhase::error(row.message)) << row.reason;
        EXPECT_EQ(w.takeSounds(), Sounds{failure}) << row.reason;
        EXPECT_TRUE(w.windows.overlayIsVisible) << row.reason;
        EXPECT_EQ(w.windows.onboardings, row.onboardings) << row.reason;
        EXPECT_FALSE(w.recorder.isRecording()) << row.reason;
        EXPECT_TRUE(!w.services.transcriber || w.services.transcriber->isCancelled || w.services.script.beginError) << row.reason;
        EXPECT_TRUE(w.recordings().empty()) << row.reason;
        w.wait(seconds(1.35));
        EXPECT_EQ(w.phase(), Kind::idle) << row.reason;
        EXPECT_FALSE(w.windows.overlayIsVisible) << row.reason;
        w.controller.shutdown();
        EXPECT_TRUE(w.rescuedTexts().empty()) << "quitting has nothing to rescue: " << row.reason;
        EXPECT_EQ(w.inserter.clipboard, "etwas anderes") << row.reason;
    }
}

TEST(Controller, APressDuringAMessageStartsADictation) {
    for (const bool isNotice : {true, false}) {
        DictationWorld w;
        w.access.microphone = isNotice ? AuthorizationStatus::authorized : AuthorizationStatus::denied;
        w.services.script.result = "";
        w.hold(seconds(1));
        w.wait(seconds(0.5));
        ASSERT_EQ(w.phase(), isNotice ? Kind::notice : Kind::error);
        w.access.microphone = AuthorizationStatus::authorized;
        w.press();
        w.wait(seconds(3));
        EXPECT_EQ(w.phase(), Kind::recording) << "the message's time has no end any more";
    }
}

TEST(Controller, AMessageHasItsOwnTime) {
    DictationWorld w;
    w.access.microphone = AuthorizationStatus::denied;
    w.hold(seconds(1));
    w.wait(seconds(1));
    w.hold(seconds(0.8)); // The first error's time ends in here.
    EXPECT_EQ(w.phase(), Kind::error) << "the second one";
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

TEST(Controller, WarnsOfALongDictationAndEndsItAtTheLimit) {
    DictationWorld w;
    w.settings.maxDictationMinutes.set(6);
    w.press();
    w.wait(seconds(299));
    EXPECT_FALSE(w.controller.isLongDictation().get());
    w.wait(seconds(10));
    EXPECT_TRUE(w.controller.isLongDictation().get());
    w.wait(seconds(50));
    EXPECT_EQ(w.phase(), Kind::recording);
    w.wait(seconds(10));
    EXPECT_EQ(w.inserter.delivered.size(), 1U) << "it is delivered like any other";

    w.settings.maxDictationMinutes.set(0);
    w.press();
    w.wait(std::chrono::hours(3));
    EXPECT_EQ(w.phase(), Kind::recording) << "below 1 there is no limit";
}

TEST(Controller, ChoosesTheRecogniserAndItsWords) {
    DictationWorld w;
    w.settings.userDictionary.set({"Nießbrauch", "Querulanz", "Sorge"});
    w.settings.legalVocabularyEnabled.set(false);
    w.settings.contextualLimit.set(2);
    w.settings.engine.set(TranscriptionEngine::streaming); // which isn't there yet
    w.dictate("b");
    EXPECT_EQ(w.services.transcriber->contextual, (std::vector<std::string>{"Nießbrauch", "Querulanz"}));
    w.settings.contextualLimit.set(-1);
    w.services.streamingIsHere = true;
    w.access.speech = AuthorizationStatus::denied; // not asked for by the newer recogniser
    w.dictate("c");
    EXPECT_TRUE(w.services.transcriber->contextual.empty());
    EXPECT_EQ(w.services.madeEngines, (std::vector{TranscriptionEngine::classic, TranscriptionEngine::streaming}));
}

TEST(Controller, TriesTheHotkeyEveryTwoSecondsUntilItWorks) {
    DictationWorld w;
    w.holdKey.canListen = false;
    w.access.trusted = false;
    w.controller.installHotkey();
    EXPECT_TRUE(w.controller.hotkeyBlocked().get());
    w.holdKey.canListen = true;
    w.wait(seconds(10));
    EXPECT_TRUE(w.controller.hotkeyBlocked().get()) << "not tried while the permission is missing";
    w.access.trusted = true;
    w.wait(seconds(2));
    EXPECT_FALSE(w.controller.hotkeyBlocked().get());
    EXPECT_EQ(w.time.pendingTimers(), 0U) << "the timer has stopped";
    w.press();
    EXPECT_EQ(w.phase(), Kind::recording);
}

TEST(Controller, InsertsLawTextsWhateverElseGoesOn) {
    DictationWorld w;
    w.press();
    w.controller.insertLegalText("§ 1814");
    w.wait(seconds(1));
    EXPECT_EQ(w.inserter.delivered, (std::vector<std::string>{"§ 1814"}));
    EXPECT_EQ(w.phase(), Kind::recording);
    w.inserter.next = std::unexpected(InsertError::noAccessibilityPermission);
    w.controller.insertLegalText("§ 1815");
    EXPECT_EQ(w.phase(), Kind::recording) << "its failure must not end the dictation";
    EXPECT_EQ(w.rescuedTexts(), (std::vector<std::string>{"§ 1815"}));
    w.inserter.next = TextInserter::Outcome::notInserted;
    w.controller.insertLegalText("§ 1816");
    w.wait(seconds(1));
    EXPECT_EQ(w.rescuedTexts(), (std::vector<std::string>{"§ 1816", "§ 1815"}));
    w.inserter.next = TextInserter::Outcome::inserted;
    w.release();
    w.wait(seconds(5));
    EXPECT_EQ(w.inserter.delivered.size(), 2U);
}

} // namespace
} // namespace querlin
