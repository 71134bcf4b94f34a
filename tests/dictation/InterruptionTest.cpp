// Sleep, lock, lost microphones and quitting, at every phase.

#include "support/DictationWorld.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

using Kind = DictationPhase::Kind;
using Texts = std::vector<std::string>;

/// Brings a world to a phase of a dictation in mode `local`, with partial text "Teil".
void bringTo(DictationWorld& w, Kind phase) {
    w.settings.cleanupMode.set(CleanupMode::local);
    if (phase == Kind::idle) return;
    w.press();
    w.services.transcriber->partial("Teil");
    w.wait(seconds(1));
    if (phase == Kind::recording) return;
    w.release();
    if (phase == Kind::transcribing) return;
    w.wait(seconds(0.5));
    if (phase == Kind::enhancing) return;
    w.wait(seconds(1.5));
    ASSERT_EQ(w.phase(), Kind::inserting);
}

TEST(Interruption, SystemSignalsEndARecordingIntoTheRescueFolderAndNothingElse) {
    for (const auto signal : {SystemSignal::willSleep, SystemSignal::sessionResigned, SystemSignal::screenLocked}) {
        for (const auto phase : {Kind::idle, Kind::recording, Kind::transcribing, Kind::enhancing, Kind::inserting}) {
            DictationWorld w;
            bringTo(w, phase);
            w.signals.send(signal);
            w.time.settle();
            const bool ends = phase == Kind::recording;
            w.wait(seconds(10));
            EXPECT_EQ(w.rescuedTexts(), ends ? Texts{"Hallo Welt."} : Texts{}) << static_cast<int>(signal);
            EXPECT_EQ(w.rescuedRecordings(), ends ? 1U : 0U);
            EXPECT_EQ(w.inserter.delivered.size(), ends || phase == Kind::idle ? 0U : 1U);
            EXPECT_EQ(w.inserter.clipboard, ends ? "Hallo Welt." : "");
            EXPECT_TRUE(w.recordings().empty());
            EXPECT_EQ(w.phase(), Kind::idle);
            EXPECT_FALSE(w.windows.overlayIsVisible);
            w.dictate("Danach.");
            EXPECT_EQ(w.inserter.delivered.back(), "Danach.") << "the reason holds for one dictation";
        }
    }
}

TEST(Interruption, TheMachineIsHeldAwakeUntilTheTextIsSafe) {
    /// Whether the machine is held a moment after the signal; 5 s later it never is.
    const auto holds = [](const std::function<void(DictationWorld&)>& before, bool isCancelled = false) {
        DictationWorld w;
        before(w);
        auto hold = std::make_shared<int>();
        const std::weak_ptr watch = hold;
        w.signals.send(SystemSignal::willSleep, std::exchange(hold, nullptr));
        w.wait(seconds(0.3));
        if (isCancelled) w.controller.cancelDictation();
        w.time.settle();
        const bool held = !watch.expired();
        w.wait(seconds(5));
        EXPECT_TRUE(watch.expired());
        return held;
    };
    const auto to = [](Kind phase) { return [phase](DictationWorld& w) { bringTo(w, phase); }; };
    EXPECT_TRUE(holds(to(Kind::recording)));
    EXPECT_TRUE(holds(to(Kind::transcribing))) << "a text on its way may arrive";
    EXPECT_FALSE(holds(to(Kind::idle)));
    EXPECT_FALSE(holds(to(Kind::recording), true)) << "cancelled";
    EXPECT_FALSE(holds([](auto& w) {
        w.key(HoldKeyEvent::Kind::pressed);
        w.wait(seconds(0.1));
    })) << "too short";
}

TEST(Interruption, AnInterruptedSilenceIsNothingHeard) {
    DictationWorld w;
    w.services.script.result = "";
    w.press();
    w.wait(seconds(1));
    w.signals.send(SystemSignal::screenLocked);
    w.wait(seconds(0.5));
    EXPECT_EQ(w.controller.phase().get(), DictationPhase::notice("Nichts gehört"));
    EXPECT_TRUE(w.rescuedTexts().empty());
    EXPECT_TRUE(w.recordings().empty());
}

TEST(Interruption, MicrophoneChangesEndTheRecordingButPasteAsUsual) {
    struct Row {
        AudioFormat format;
        bool ends;
    };
    for (const auto& row : {Row{{48000, 1}, false}, Row{{44100, 1}, true}, Row{{}, true}}) {
        DictationWorld w;
        bringTo(w, Kind::recording);
        w.audio.change(row.format);
        w.time.settle();
        EXPECT_EQ(w.phase(), row.ends ? Kind::transcribing : Kind::recording);
        w.release();
        w.wait(seconds(10));
        EXPECT_EQ(w.inserter.delivered, Texts{"Hallo Welt."});
        EXPECT_TRUE(w.rescuedTexts().empty());
    }
}

TEST(Shutdown, RescuesWhateverIsUnderWay) {
    struct Row {
        Kind phase;
        Texts rescued;
        const char* reason;
    };
    for (const auto& row : {Row{Kind::idle, {}, "nothing runs"}, Row{Kind::recording, {"Teil"}, "partial text"},
                            Row{Kind::transcribing, {"Teil"}, "no transcript yet"},
                            Row{Kind::enhancing, {"Hallo Welt."}, "the transcript goes before the partial text"},
                            Row{Kind::inserting, {"Hallo Welt."}, "not known to have arrived"}}) {
        DictationWorld w;
        bringTo(w, row.phase);
        w.controller.shutdown();
        w.controller.shutdown();
        EXPECT_EQ(w.rescuedTexts(), row.rescued) << row.reason;
        EXPECT_EQ(w.rescuedRecordings(), row.rescued.size()) << row.reason;
        EXPECT_EQ(w.services.notifications.size(), row.rescued.size());
        EXPECT_TRUE(w.recordings().empty()) << row.reason;
        EXPECT_FALSE(w.recorder.isRecording());
        EXPECT_FALSE(w.holdKey.isHeard());
        EXPECT_FALSE(w.signals.isObserved());
        w.wait(seconds(20));
        w.press();
        EXPECT_TRUE(w.inserter.delivered.empty()) << "nothing runs on: " << row.reason;
        EXPECT_EQ(w.rescuedTexts().size(), row.rescued.size()) << row.reason;
        EXPECT_FALSE(w.recorder.isRecording()) << "nothing starts any more";
    }
}

TEST(Shutdown, WithoutPartialTextThePlaceholderStandsForTheAudio) {
    for (const bool isVoice : {true, false}) {
        DictationWorld w;
        w.services.script.isVoice = isVoice;
        w.press();
        w.wait(seconds(1));
        w.controller.shutdown();
        EXPECT_EQ(w.rescuedTexts(), isVoice ? Texts{"(nur Tonaufnahme – beim Beenden unterbrochen)"} : Texts{});
        EXPECT_TRUE(w.recordings().empty());
    }
}

} // namespace
} // namespace querlin
