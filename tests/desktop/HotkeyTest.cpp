#include "desktop/HotkeyManager.h"
#include "support/CapturedLog.h"
#include "support/FakeDesktop.h"
#include "support/ManualTime.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

using Kind = HoldKeyEvent::Kind;

struct HotkeyTest : testing::Test {
    CapturedLog log;
    ManualTime time;
    FakeHoldKey holdKey{time};
    FakeAccess access;
    PermissionsManager permissions{time, access};
    HotkeyManager hotkey{time, holdKey, permissions, HotkeyConfig(), "/opt/querlin"};
    std::string calls; ///< "+" a press, "-" a release, "x" an abandonment

    HotkeyTest() {
        hotkey.setCallbacks([this] { calls += '+'; }, [this] { calls += '-'; }, [this] { calls += 'x'; });
    }
    /// Plays "p" press, "r" release, "o" another key, "l" a lost source; a digit waits that many tenths of a second.
    std::string after(std::string_view script) {
        for (const char step : script) {
            if (step >= '0' && step <= '9') time.advance(std::chrono::milliseconds(100 * (step - '0')));
            if (step == 'p') holdKey.send(Kind::pressed);
            if (step == 'r') holdKey.send(Kind::released);
            if (step == 'o') holdKey.send(Kind::otherKeyPressed);
            if (step == 'l') holdKey.send(Kind::lost);
        }
        EXPECT_EQ(calls, "") << "never inside a report of the source";
        time.settle();
        return std::exchange(calls, {});
    }
};

TEST_F(HotkeyTest, MakesOnePressAndOneEndOfEachHold) {
    const HotkeyConfig combo{HotkeyConfig::Mode::holdCombo, ModifierKey::altGr, ComboHotkey::altSpace};
    struct Row {
        HotkeyConfig config;
        const char* script;
        const char* calls;
        const char* reason;
    };
    ASSERT_TRUE(hotkey.start());
    for (const auto& row : {Row{{}, "pr", "+-", "a hold"}, Row{{}, "pp", "+", "twice down"}, Row{{}, "rr", "-", "twice up"},
                            Row{{}, "pl", "+-", "a lost source ends the hold"}, Row{{}, "rl", "", "which was none"},
                            Row{{}, "por", "+x", "a shortcut, and no release after it"}, Row{{}, "poorpr", "+x+-", "the next hold counts"},
                            Row{{}, "o", "", "no hold"}, Row{combo, "por", "+-", "a combination is no half of a shortcut"}}) {
        hotkey.update(row.config);
        EXPECT_EQ(after(row.script), row.calls) << row.reason;
    }
}

TEST_F(HotkeyTest, ALateKeyIsTypedWhileDictating) {
    ASSERT_TRUE(hotkey.start());
    holdKey.send(Kind::pressed);
    time.advance(HotkeyManager::shortcutSpan);
    holdKey.send(Kind::otherKeyPressed);
    time.settle();
    EXPECT_EQ(calls, "+x") << "just in time";
    calls.clear();
    holdKey.send(Kind::released);
    holdKey.send(Kind::pressed);
    time.advance(HotkeyManager::shortcutSpan + std::chrono::milliseconds(1));
    holdKey.send(Kind::otherKeyPressed);
    holdKey.send(Kind::released);
    time.settle();
    EXPECT_EQ(calls, "+-");
    EXPECT_EQ(log.lines().size(), 1U) << "no line for a key";
}

TEST_F(HotkeyTest, StartsAnewAndStopsWithoutARelease) {
    access.trusted = false;
    EXPECT_FALSE(hotkey.start());
    access.trusted = true;
    holdKey.canListen = false;
    EXPECT_FALSE(hotkey.start() || hotkey.isRunning());
    holdKey.canListen = true;
    ASSERT_TRUE(hotkey.start());
    EXPECT_EQ(after("p"), "+");
    hotkey.stop();
    EXPECT_FALSE(hotkey.isRunning() || hotkey.isHotkeyDown() || holdKey.isHeard());
    EXPECT_EQ(after("r"), "");
}

TEST_F(HotkeyTest, ANewKeyEndsTheHoldOfTheFormerOne) {
    const HotkeyConfig fn{HotkeyConfig::Mode::holdModifier, ModifierKey::fn, ComboHotkey::altSpace};
    ASSERT_TRUE(hotkey.start());
    EXPECT_EQ(after("p"), "+");
    hotkey.update(HotkeyConfig());
    EXPECT_EQ(after(""), "") << "the same one";
    hotkey.update(fn);
    EXPECT_EQ(calls, "") << "never inside the call";
    time.settle();
    EXPECT_EQ(std::exchange(calls, {}), "-");
    EXPECT_EQ(after("r"), "") << "not again by the key itself";
    EXPECT_EQ(holdKey.wanted, fn);
}

} // namespace
} // namespace querlin
