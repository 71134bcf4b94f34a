// What the hold key's first moments show: nothing, until it is clear that it isn't part of a shortcut.

#include "support/DictationWorld.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

using Kind = DictationPhase::Kind;
using Key = HoldKeyEvent::Kind;

/// Neither seen nor heard, and nothing left.
void expectNoTrace(DictationWorld& w, const char* reason) {
    EXPECT_FALSE(w.windows.overlayIsVisible) << reason;
    EXPECT_TRUE(w.services.sounds.empty()) << reason;
    EXPECT_EQ(w.phase(), Kind::idle) << reason;
    EXPECT_EQ(w.windows.onboardings, 0) << reason;
    EXPECT_FALSE(w.recorder.isRecording()) << reason;
    w.wait(seconds(20));
    EXPECT_TRUE(w.windows.notices.empty() && w.services.notifications.empty()) << reason;
    EXPECT_TRUE(w.history.entries().empty() && w.inserter.delivered.empty()) << reason;
    EXPECT_TRUE(w.rescuedTexts().empty() && w.recordings().empty()) << reason;
}

TEST(HoldKey, RecordsAtOnceAndShowsItALittleLater) {
    for (const bool seesOtherKeys : {true, false}) {
        DictationWorld w;
        w.holdKey.seesOtherKeys = seesOtherKeys;
        w.key(Key::pressed);
        EXPECT_TRUE(w.recorder.isRecording());
        w.wait(seconds(seesOtherKeys ? 0.149 : 0.299));
        EXPECT_EQ(w.phase(), Kind::idle);
        EXPECT_FALSE(w.windows.overlayIsVisible);
        EXPECT_TRUE(w.services.sounds.empty());
        w.wait(seconds(0.001));
        EXPECT_EQ(w.phase(), Kind::recording);
        EXPECT_TRUE(w.windows.overlayIsVisible);
        EXPECT_EQ(w.takeSounds(), std::vector{FeedbackSound::start});
    }
}

TEST(HoldKey, AShortcutLeavesNoTrace) {
    const auto denied = [](DictationWorld& w) { w.access.microphone = AuthorizationStatus::denied; };
    const auto secure = [](DictationWorld& w) { w.desktop.focus(DictationContext::FieldKind::secure); };
    const auto broken = [](DictationWorld& w) { w.audio.nextStartError = "belegt"; };
    for (const auto& given : std::vector<std::function<void(DictationWorld&)>>{[](auto&) {}, denied, secure, broken}) {
        DictationWorld w;
        given(w);
        w.key(Key::pressed);
        if (w.services.transcriber) w.services.transcriber->partial("at");
        w.wait(seconds(0.1));
        w.key(Key::otherKeyPressed);
        expectNoTrace(w, "before it shows");
        w.key(Key::released);
        w.hold(seconds(0.1));
        expectNoTrace(w, "a short press of the key alone");
    }
    DictationWorld w;
    w.press();
    w.takeSounds();
    w.wait(seconds(0.6));
    w.key(Key::otherKeyPressed);
    expectNoTrace(w, "after it shows");
    w.key(Key::released);
    w.dictate("Danach.");
    EXPECT_EQ(w.inserter.delivered, std::vector<std::string>{"Danach."});
    w.key(Key::pressed);
    w.wait(seconds(0.2));
    w.controller.shutdown();
    EXPECT_TRUE(w.rescuedTexts().empty() && w.recordings().empty()) << "quitting in the first moments";
}

TEST(HoldKey, AShortcutEndsNothingElse) {
    DictationWorld w;
    w.controller.toggleDictation();
    w.key(Key::pressed);
    w.key(Key::otherKeyPressed);
    EXPECT_EQ(w.phase(), Kind::recording) << "the menu began it, the key is only used meanwhile";
    w.key(Key::released);
    w.wait(seconds(1));
    w.controller.toggleDictation();
    w.key(Key::pressed);
    w.key(Key::otherKeyPressed);
    w.key(Key::released);
    w.wait(seconds(5));
    EXPECT_EQ(w.inserter.delivered.size(), 1U) << "nor does it touch one that is on its way";
}

} // namespace
} // namespace querlin
