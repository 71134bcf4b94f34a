#include "desktop/HotkeyManager.h"
#include "support/CapturedLog.h"
#include "support/FakeDesktop.h"
#include "support/ManualTime.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

namespace Type = KeyEventType;
using Strings = std::vector<std::string>;

struct HotkeyTest : testing::Test {
    CapturedLog log;
    ManualTime time;
    FakeKeyboard keyboard;
    FakeAccess access;
    FakeDesktop desktop;
    PermissionsManager permissions{time, access, desktop};
    HotkeyManager hotkey{time, keyboard, permissions, HotkeyConfig(), "/opt/querlin"};
    std::string calls; ///< "+" a press, "-" a release

    HotkeyTest() {
        hotkey.setCallbacks([this] { calls += '+'; }, [this] { calls += '-'; });
    }
    void configure(HotkeyConfig::Mode mode, ModifierKey modifier, ComboHotkey combo) {
        hotkey.update({mode, modifier, combo});
        calls.clear();
    }
    std::string after(const std::vector<KeyEvent>& events) {
        for (const auto& event : events) keyboard.send(event);
        time.settle();
        return std::exchange(calls, {});
    }
};

constexpr KeyEvent changed(std::int64_t key, std::uint64_t flags) { return {Type::flagsChanged, key, flags}; }
constexpr KeyEvent down(std::int64_t key, std::uint64_t flags) { return {Type::keyDown, key, flags}; }
constexpr KeyEvent up(std::int64_t key, std::uint64_t flags = 0) { return {Type::keyUp, key, flags}; }

TEST_F(HotkeyTest, MakesOnePressAndOneReleaseOfEachHold) {
    constexpr auto modifier = HotkeyConfig::Mode::holdModifier;
    constexpr auto combo = HotkeyConfig::Mode::holdCombo;
    constexpr auto option = KeyFlag::alternate;
    struct Row {
        HotkeyConfig config;
        std::vector<KeyEvent> events;
        const char* calls;
        const char* reason;
    };
    const HotkeyConfig right;
    const HotkeyConfig left{modifier, ModifierKey::leftAlt, ComboHotkey::altSpace};
    const HotkeyConfig space{combo, ModifierKey::altGr, ComboHotkey::altSpace};
    const HotkeyConfig letter{combo, ModifierKey::altGr, ComboHotkey::superShiftD};
    const std::vector<Row> rows = {
        {right, {changed(61, 0x80040), changed(61, 0)}, "+-", "press and release"},
        {right, {changed(61, 0x80040), changed(58, 0x80060), changed(58, 0x80040), changed(61, 0)}, "+-", "the other key of the pair"},
        {right, {changed(56, 0x40)}, "", "the bit counts only in events of the key itself"},
        {right, {changed(61, 0x40), changed(61, 0x40), changed(61, 0)}, "+-", "a release was missed"},
        {right, {down(49, 0x40), up(49)}, "", "other keys"},
        {left, {changed(61, 0x80040), changed(58, 0x80060), changed(58, 0x80040)}, "+-", "left is not right"},
        {space, {down(49, 0), up(49)}, "", "the key alone; a release without a press"},
        {space,
         {down(49, option | KeyFlag::shift), down(49, option), down(49, option), changed(58, 0), up(49)},
         "+-",
         "more modifiers than needed, repeats, the modifier let go first"},
        {letter, {down(2, KeyFlag::command), down(2, KeyFlag::command | KeyFlag::shift), up(2)}, "+-", "both modifiers"},
    };
    ASSERT_TRUE(hotkey.start());
    for (const auto& row : rows) {
        hotkey.update(row.config);
        EXPECT_EQ(after(row.events), row.calls) << row.reason;
    }
    EXPECT_TRUE(log.has("[tap] flagsChanged keyCode=58 flags=0x80060 erwarte keyCode=61 maske=0x40 → ignoriert"));
    EXPECT_TRUE(log.has("[tap] flagsChanged keyCode=61 flags=0x0 erwarte keyCode=61 maske=0x40 → TREFFER up"));
    EXPECT_TRUE(log.has("[tap] keyDown keyCode=2 flags=0x100000"));
    EXPECT_EQ(log.countOf("[tap] Modifier passen nicht – ignoriert."), 2U);
    EXPECT_EQ(log.countOf("[hotkey] Hotkey GEDRÜCKT"), 6U) << "repeats say nothing";
}

TEST_F(HotkeyTest, StartsAnewAndStopsWithoutARelease) {
    ASSERT_TRUE(hotkey.start());
    EXPECT_EQ(log.lines(), (Strings{"[hotkey] start() – AXIsProcessTrusted=true, Hotkey=Rechte Wahltaste (⌥) halten",
                                    "[hotkey] Tap aktiv=true, Maske=0x1c00", "[hotkey] NSEvent-Gegenprobe aktiv"}));
    EXPECT_EQ(keyboard.tap->mask, 0x1C00U);
    EXPECT_EQ(after({changed(61, 0x40), up(49)}), "+");
    EXPECT_EQ(hotkey.observedEventCount(), 2);
    hotkey.stop();
    EXPECT_FALSE(hotkey.isRunning() || hotkey.isHotkeyDown() || keyboard.isTapped());
    EXPECT_EQ(after({changed(61, 0)}), "");

    keyboard.canMonitor = false;
    ASSERT_TRUE(hotkey.start());
    ASSERT_TRUE(hotkey.start());
    EXPECT_EQ(hotkey.observedEventCount(), 0);
    EXPECT_TRUE(log.has("[hotkey] NSEvent-Gegenprobe NICHT aktiv"));
    EXPECT_NE(hotkey.diagnosticsSummary().find("Vom NSEvent-Monitor gesehene Ereignisse: 1"), std::string::npos) << "over all starts";
}

TEST_F(HotkeyTest, SaysWhyItDoesNotStart) {
    access.trusted = false;
    EXPECT_FALSE(hotkey.start());
    EXPECT_TRUE(log.has("[hotkey] Abbruch: keine Bedienungshilfen-Berechtigung."));
    access.trusted = true;
    keyboard.canTap = false;
    access.secureInput = true;
    EXPECT_FALSE(hotkey.start());
    EXPECT_TRUE(log.has("[hotkey] WARNUNG: Secure Input ist aktiv – Event-Taps bekommen keine Tastenereignisse."));
    EXPECT_TRUE(log.has("[hotkey] CGEvent.tapCreate lieferte nil – Tap nicht angelegt."));
    EXPECT_FALSE(hotkey.isRunning());
    access.secureProcess = 815;
    keyboard.canTap = true;
    EXPECT_TRUE(hotkey.start()) << "a warning only";
    EXPECT_TRUE(log.has("[hotkey] WARNUNG: Secure Input ist aktiv (durch PID 815) – Event-Taps bekommen keine Tastenereignisse."));
    EXPECT_EQ(hotkey.diagnosticsSummary(),
              "Hotkey: Rechte Wahltaste (⌥) halten\n  Modus: holdModifier, Taste=rightOption (keyCode 61, Maske 0x40)\n"
              "  AXIsProcessTrusted: true\n  Tap angelegt: true, läuft: true\n  Tap aktiviert: true\n"
              "  Vom Tap gesehene Ereignisse: 0\n  Vom NSEvent-Monitor gesehene Ereignisse: 0\n"
              "  Secure Input: true (durch PID 815, PID 815)\n  Bundle: /opt/querlin");
}

TEST_F(HotkeyTest, ANewKeyEndsTheHoldOfTheFormerOne) {
    const HotkeyConfig fn{HotkeyConfig::Mode::holdModifier, ModifierKey::fn, ComboHotkey::altSpace};
    ASSERT_TRUE(hotkey.start());
    EXPECT_EQ(after({changed(61, 0x40)}), "+");
    hotkey.update(HotkeyConfig());
    EXPECT_EQ(after({}), "");
    hotkey.update(fn);
    EXPECT_EQ(after({changed(61, 0)}), "-") << "once, and not again by the key itself";
    EXPECT_TRUE(log.has("[hotkey] Hotkey geändert: Rechte Wahltaste (⌥) halten → Fn / 🌐 halten"));
    EXPECT_EQ(keyboard.tapsMade, 1);
}

TEST_F(HotkeyTest, TakesAnInterruptedStreamUpAgain) {
    ASSERT_TRUE(hotkey.start());
    EXPECT_EQ(after({{Type::disabledByTimeout, 0, 0}, {Type::disabledByUserInput, 0, 0}, changed(61, 0x40)}), "+");
    EXPECT_EQ(keyboard.tap->enablings, 3);
    EXPECT_EQ(hotkey.observedEventCount(), 1);
    EXPECT_TRUE(log.has("[hotkey] Tap wurde deaktiviert (4294967294) – reaktiviere."));
}

TEST(Permissions, AreReadFreshAndAnsweredOnTheMainQueue) {
    ManualTime time;
    FakeAccess access;
    FakeDesktop desktop;
    PermissionsManager permissions(time, access, desktop);
    EXPECT_TRUE(permissions.allGranted());
    access.microphone = AuthorizationStatus::restricted;
    access.speech = AuthorizationStatus::notDetermined;
    EXPECT_EQ(permissions.microphoneState(), PermissionState::denied);
    EXPECT_EQ(permissions.speechState(), PermissionState::notDetermined);
    EXPECT_FALSE(permissions.allGranted());
    std::string answers;
    permissions.requestMicrophone([&](bool granted) { answers += granted ? 'j' : 'n'; });
    EXPECT_EQ(answers, "");
    time.settle();
    EXPECT_EQ(answers, "n");
    permissions.openSystemSettings(PermissionsManager::SettingsPane::speech);
    EXPECT_EQ(access.openedPanes, Strings{"Privacy_SpeechRecognition"});
    for (const auto process : {0, -1}) {
        access.secureProcess = process;
        EXPECT_FALSE(permissions.secureInputOwner());
    }
    access.secureProcess = 4711;
    EXPECT_EQ(permissions.secureInputOwner()->name, "Mail");
}

} // namespace
} // namespace querlin
