// The hold key on a real X server, on its way to the main queue.

#include "OwnServer.h"

#include "platform/x11/X11Capabilities.h"
#include "platform/x11/X11HoldKey.h"
#include "platform/x11/X11PasteKey.h"
#include "platform/x11/XcbConnection.h"
#include "support/CapturedLog.h"
#include "support/Desktop.h"

#include <gtest/gtest.h>
#include <xcb/xtest.h>

namespace querlin {
namespace {

using Kind = HoldKeyEvent::Kind;

constexpr std::uint8_t altGr = 108;
constexpr std::uint8_t space = 65;

constexpr HotkeyConfig modifier(ModifierKey key) { return {HotkeyConfig::Mode::holdModifier, key, ComboHotkey::altSpace}; }

/// Presses keys, as fast as the server takes them.
class Keys {
public:
    explicit Keys(const std::string& display = {}) : connection_(std::move(*XcbConnection::open(display))) {}
    ~Keys() { // A server forgets what a client had in mind that has gone.
        (void)connection_->reply(xcb_get_input_focus_reply, xcb_get_input_focus(connection_->get()));
    }
    Keys(const Keys&) = delete;
    Keys& operator=(const Keys&) = delete;
    void send(std::uint8_t keyCode, bool isDown) const {
        xcb_test_fake_input(connection_->get(), isDown ? XCB_KEY_PRESS : XCB_KEY_RELEASE, keyCode, 0, XCB_NONE, 0, 0, 0);
        connection_->flush();
    }
    void tap(std::uint8_t keyCode) const {
        send(keyCode, true);
        send(keyCode, false);
    }

private:
    std::unique_ptr<XcbConnection> connection_;
};

struct HoldKeyTest : testing::Test {
    CapturedLog log;
    RunLoop loop;
    std::shared_ptr<OwnKeys> ownKeys = std::make_shared<OwnKeys>();
    X11HoldKey holdKey{loop, ownKeys};
    std::string heard; ///< "!" ready, "+" pressed, "-" released, "o" another key, "?" lost
    Registration listening;

    void listen(X11HoldKey& at, const HotkeyConfig& wanted = modifier(ModifierKey::altGr)) {
        listening.reset();
        heard.clear();
        listening = at.listen(wanted, [this](const HoldKeyEvent& event) { heard += "!+-o?"[static_cast<std::size_t>(event.kind)]; });
        EXPECT_TRUE(hears("!"));
        heard.clear();
    }
    bool hears(std::string_view wanted) {
        serveUntil(loop, [&] { return heard.size() >= wanted.size(); });
        return heard == wanted;
    }
};

TEST_F(HoldKeyTest, HearsEachKeyThatCanBeChosen) {
    struct Row {
        HotkeyConfig config;
        const char* keys;
        const char* heard;
    };
    const auto combo = [](ComboHotkey choice) { return HotkeyConfig{HotkeyConfig::Mode::holdCombo, ModifierKey::altGr, choice}; };
    for (const auto& row :
         {Row{modifier(ModifierKey::altGr), "key 108", "+-"}, Row{modifier(ModifierKey::rightControl), "key 37 key 105", "+-"},
          Row{modifier(ModifierKey::rightShift), "key 50 key 62", "+-"}, Row{modifier(ModifierKey::rightSuper), "key 133 key 134", "+-"},
          Row{modifier(ModifierKey::leftAlt), "key 108 key 64", "+-"}, Row{modifier(ModifierKey::fn), "key 151", "+-"},
          Row{modifier(ModifierKey::altGr), "keydown 108 key 24 keyup 108", "+o-"},
          Row{combo(ComboHotkey::altSpace), "key 65 keydown 64 keydown 65 keyup 64 keyup 65", "+-"},
          Row{combo(ComboHotkey::superShiftD), "key super+shift+d", "+-"}}) {
        listen(holdKey, row.config);
        EXPECT_EQ(holdKey.boundKey(), row.config.displayName());
        shell(std::string("xdotool ") + row.keys);
        EXPECT_TRUE(hears(row.heard)) << row.keys << ": " << heard;
    }
}

TEST_F(HoldKeyTest, HearsAlsoWhileAnotherProgramHasTheKeyboardAndTheLayoutChanges) {
    const auto other = std::move(*XcbConnection::open({}));
    const auto granted = other->reply(xcb_grab_keyboard_reply, xcb_grab_keyboard(other->get(), 1, other->root(), XCB_CURRENT_TIME,
                                                                                 XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    ASSERT_EQ(granted->status, XCB_GRAB_STATUS_SUCCESS);
    listen(holdKey);
    const Keys keys;
    for (const auto* layout : {"us", "de"}) {
        heard.clear();
        keys.send(altGr, true);
        EXPECT_TRUE(hears("+"));
        shell(std::string("setxkbmap ") + layout);
        keys.send(altGr, false);
        EXPECT_TRUE(hears("+-")) << layout;
    }
}

TEST_F(HoldKeyTest, LosesNothingInAStorm) {
    listen(holdKey);
    const Keys keys;
    std::string wanted;
    for (int i = 0; i < 700; ++i) {
        keys.send(altGr, true);
        if (i % 3 == 0) keys.tap(space);
        keys.send(altGr, false);
        wanted += i % 3 == 0 ? "+o-" : "+-";
    }
    EXPECT_TRUE(hears(wanted));
}

TEST_F(HoldKeyTest, APasteOfOursIsNoKeyOfTheUsers) {
    X11PasteKey pasteKey(loop, ownKeys);
    listen(holdKey, modifier(ModifierKey::fn));
    const Keys keys;
    keys.send(151, true);
    EXPECT_TRUE(await(loop, pasteKey.press(PasteShortcut::standard)));
    keys.tap(55); // The user's own V.
    keys.send(151, false);
    EXPECT_TRUE(hears("+o-")) << heard;
}

TEST_F(HoldKeyTest, MayEndWithinItsOwnCallAndIsSilentThen) {
    int calls = 0;
    listening = holdKey.listen(modifier(ModifierKey::altGr), [&](const HoldKeyEvent&) {
        ++calls;
        listening.reset();
    });
    EXPECT_TRUE(serveUntil(loop, [&] { return calls == 1; }));
    Keys().tap(altGr);
    serve(loop, seconds(0.02));
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(holdKey.isReady());
}

TEST_F(HoldKeyTest, ReportsALostServerOnce) {
    auto server = std::make_unique<OwnServer>();
    X11Capabilities capabilities(server->display());
    EXPECT_TRUE(capabilities.canListenToKeys() && capabilities.canPressKeys());
    X11HoldKey there(loop, std::make_shared<OwnKeys>(), server->display());
    listen(there);
    Keys(server->display()).send(altGr, true);
    EXPECT_TRUE(hears("+"));
    server->kill();
    EXPECT_TRUE(hears("+?"));
    EXPECT_FALSE(there.isReady() || capabilities.canListenToKeys());
    EXPECT_EQ(there.boundKey(), "");
    serve(loop, seconds(0.02));
    EXPECT_EQ(heard, "+?");
}

TEST_F(HoldKeyTest, NeitherListensNorEndsSlowlyWithAStoppedServer) {
    const OwnServer server;
    X11HoldKey there(loop, std::make_shared<OwnKeys>(), server.display());
    listen(there);
    server.stop();
    const auto begun = std::chrono::steady_clock::now();
    listening.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - begun, seconds(0.1));
    listening = there.listen(HotkeyConfig(), [](const HoldKeyEvent&) {});
    EXPECT_LT(std::chrono::steady_clock::now() - begun, seconds(0.2)) << "the main thread doesn't wait";
    listening.reset();
    EXPECT_FALSE(X11Capabilities(server.display()).canListenToKeys());
    EXPECT_LT(std::chrono::steady_clock::now() - begun, seconds(1.5));
}

TEST_F(HoldKeyTest, IsNeverReadyWithoutAServer) {
    X11HoldKey nowhere(loop, std::make_shared<OwnKeys>(), ":9999");
    listening = nowhere.listen(HotkeyConfig(), [](const HoldKeyEvent&) { FAIL(); });
    EXPECT_TRUE(eventually([this] { return log.countOf("nicht zu hören") == 1; }));
    serve(loop, seconds(0.02));
    EXPECT_FALSE(nowhere.isReady() || X11Capabilities(":9999").canListenToKeys());
}

} // namespace
} // namespace querlin
