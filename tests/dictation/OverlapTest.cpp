// Cancellations, and two dictations at once: neither touches the other's things.

#include "support/DictationWorld.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

using Kind = DictationPhase::Kind;
using Texts = std::vector<std::string>;

/// In mode `local`, so that there is time between the steps.
void prepare(DictationWorld& w, std::string transcript) {
    w.settings.cleanupMode.set(CleanupMode::local);
    w.services.script.result = std::move(transcript);
}

TEST(Cancellation, EndsEachPhaseAtOnce) {
    struct Row {
        double secondsAfterRelease;
        Texts deliveredAfterwards;
        DictationPhase phaseSoonAfter;
        const char* reason;
    };
    const std::vector<Row> rows = {
        {-1, {}, {}, "recording: nothing happens any more"},
        {0.1, {}, DictationPhase::notice("Nichts gehört"), "transcribing: the recogniser gives the empty text"},
        {1.0, {"Hallo."}, {}, "enhancing: the text is there and is delivered"},
        {2.2, {"Hallo."}, {}, "inserting: likewise"},
    };
    for (const auto& row : rows) {
        DictationWorld w;
        prepare(w, "Hallo.");
        w.press();
        w.wait(seconds(1));
        if (row.secondsAfterRelease >= 0) {
            w.release();
            w.wait(seconds(row.secondsAfterRelease));
        }
        w.controller.cancelDictation();
        EXPECT_EQ(w.phase(), Kind::idle) << row.reason;
        EXPECT_FALSE(w.windows.overlayIsVisible) << row.reason;
        EXPECT_FALSE(w.recorder.isRecording()) << row.reason;
        EXPECT_TRUE(w.recordings().empty()) << row.reason;
        w.wait(seconds(0.01));
        EXPECT_EQ(w.controller.phase().get(), row.phaseSoonAfter) << row.reason;
        w.wait(seconds(10));
        EXPECT_EQ(w.inserter.delivered, row.deliveredAfterwards) << row.reason;
        EXPECT_EQ(w.phase(), Kind::idle) << row.reason;
        EXPECT_FALSE(w.windows.overlayIsVisible) << row.reason;
    }
}

TEST(Overlap, APressRightAfterDeliveryKeepsItsOverlay) {
    DictationWorld w;
    w.hold(seconds(1));
    w.wait(seconds(1.1)); // delivered; the overlay would go in 0.15 s
    ASSERT_EQ(w.phase(), Kind::idle);
    w.press();
    w.wait(seconds(0.3));
    EXPECT_EQ(w.phase(), Kind::recording);
    EXPECT_TRUE(w.windows.overlayIsVisible);
}

TEST(Overlap, AnOlderRunDeliversAndBooksButLeavesTheNewerAlone) {
    DictationWorld w;
    prepare(w, "Alt.");
    w.settings.historyKeepAudio.set(true);
    w.hold(seconds(1));
    w.wait(seconds(0.6)); // enhancing
    w.controller.cancelDictation();
    const auto older = w.services.transcriber;
    w.services.script.result = "Neu.";
    w.desktop.front->localizedName = "Writer";
    w.press();
    w.services.transcriber->partial("ne");
    older->partial("von gestern");
    w.time.settle();
    const auto recordings = w.recordings();
    w.wait(seconds(4)); // the older run ends in here
    EXPECT_EQ(w.inserter.delivered, Texts{"Alt."});
    EXPECT_EQ(w.history.entries().at(0).appName, "Mail") << "booked under its own context";
    EXPECT_EQ(w.phase(), Kind::recording);
    EXPECT_TRUE(w.windows.overlayIsVisible);
    EXPECT_EQ(w.controller.livePartialText().get(), "ne");
    EXPECT_EQ(w.recordings(), recordings) << "audio, text and lock of the newer one";
    w.release();
    w.wait(seconds(10));
    EXPECT_EQ(w.inserter.delivered, (Texts{"Alt.", "Neu."}));
    EXPECT_TRUE(w.history.audioFile(w.history.entries().at(0)));
    EXPECT_TRUE(w.recordings().empty());
}

TEST(Overlap, AnOlderRunsFailureIsNotTheNewersError) {
    for (const auto* transcript : {"Alt.", "streiche das"}) {
        DictationWorld w;
        prepare(w, transcript);
        w.inserter.next = std::unexpected(InsertError::noAccessibilityPermission);
        w.hold(seconds(1));
        w.wait(seconds(0.6)); // enhancing
        w.controller.cancelDictation();
        w.press();
        w.wait(seconds(6));
        EXPECT_EQ(w.rescuedTexts(), transcript == std::string_view("Alt.") ? Texts{"Alt."} : Texts{});
        EXPECT_EQ(w.phase(), Kind::recording) << transcript;
        EXPECT_TRUE(w.windows.overlayIsVisible) << transcript;
        EXPECT_EQ(w.recordings().size(), 2U) << transcript << ": audio and lock";
    }
}

TEST(Overlap, ShutdownRescuesTheRecordingBesideACancelledRun) {
    DictationWorld w;
    prepare(w, "Alt.");
    w.hold(seconds(1));
    w.wait(seconds(0.6)); // enhancing
    w.controller.cancelDictation();
    w.press();
    w.services.transcriber->partial("Neuer Teil");
    w.wait(seconds(0.3));
    w.controller.shutdown();
    EXPECT_EQ(w.rescuedTexts(), Texts{"Neuer Teil"}) << "the user had given the older one up";
}

} // namespace
} // namespace querlin
