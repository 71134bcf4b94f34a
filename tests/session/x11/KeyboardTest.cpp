// The keys of a real X server on their way to the main queue.

#include "OwnServer.h"

#include "platform/x11/KeyTranslation.h"
#include "platform/x11/KeyboardGrab.h"
#include "platform/x11/X11Keyboard.h"
#include "support/CapturedLog.h"
#include "support/Desktop.h"

#include <gtest/gtest.h>
#include <xcb/xtest.h>

namespace querlin {
namespace {

namespace Type = KeyEventType;

constexpr std::uint32_t all = Type::maskBit(Type::keyDown) | Type::maskBit(Type::keyUp) | Type::maskBit(Type::flagsChanged);

struct Hold {
    std::uint8_t keyCode;
    std::int64_t virtualKey;
    std::uint64_t flags; ///< 0 for a key that is no modifier
};

constexpr std::array<Hold, 13> holds = {{
    {108, VirtualKey::rightOption, KeyFlag::alternate | KeyFlag::rightOptionDevice},
    {64, VirtualKey::leftOption, KeyFlag::alternate | KeyFlag::leftOptionDevice},
    {105, VirtualKey::rightControl, KeyFlag::control | KeyFlag::rightControlDevice},
    {37, VirtualKey::leftControl, KeyFlag::control | KeyFlag::leftControlDevice},
    {62, VirtualKey::rightShift, KeyFlag::shift | KeyFlag::rightShiftDevice},
    {50, VirtualKey::leftShift, KeyFlag::shift | KeyFlag::leftShiftDevice},
    {134, VirtualKey::rightCommand, KeyFlag::command | KeyFlag::rightCommandDevice},
    {133, VirtualKey::leftCommand, KeyFlag::command | KeyFlag::leftCommandDevice},
    {151, VirtualKey::fn, KeyFlag::fnDevice},
    {65, VirtualKey::space, 0},
    {40, VirtualKey::d, 0},
    {38, VirtualKey::other, 0},
    {66, VirtualKey::other, 0}, // Caps Lock
}};

std::array<KeyEvent, 2> pressAndRelease(const Hold& hold) {
    if (hold.flags != 0) return {{{Type::flagsChanged, hold.virtualKey, hold.flags}, {Type::flagsChanged, hold.virtualKey, 0}}};
    return {{{Type::keyDown, hold.virtualKey, 0}, {Type::keyUp, hold.virtualKey, 0}}};
}

TEST(KeyTranslationTest, NamesPlacesNotLetters) {
    for (const auto& hold : holds) {
        KeyTranslation translation;
        const auto wanted = pressAndRelease(hold);
        EXPECT_EQ(translation.translate(hold.keyCode, true), wanted[0]) << int{hold.keyCode};
        EXPECT_EQ(translation.translate(hold.keyCode, false), wanted[1]) << int{hold.keyCode};
    }
}

TEST(KeyTranslationTest, KeepsAKindAsLongAsOneOfItsKeysIsDown) {
    KeyTranslation translation;
    translation.translate(50, true);
    const auto both = translation.translate(62, true);
    const auto space = translation.translate(65, true);
    const auto right = translation.translate(50, false);
    EXPECT_EQ(both->flags, KeyFlag::shift | KeyFlag::leftShiftDevice | KeyFlag::rightShiftDevice);
    EXPECT_EQ(space, (KeyEvent{Type::keyDown, VirtualKey::space, both->flags}));
    EXPECT_EQ(right->flags, KeyFlag::shift | KeyFlag::rightShiftDevice);
}

TEST(KeyTranslationTest, BeginsWithWhatIsDownAndMakesUpForMissedReleases) {
    KeyTranslation translation;
    KeyTranslation::Keymap held{};
    held[108 / 8] = 1U << (108 % 8);
    EXPECT_TRUE(translation.begin(held).empty());
    EXPECT_EQ(translation.translate(108, true), std::nullopt) << "down twice";
    EXPECT_EQ(translation.translate(65, true)->flags, KeyFlag::alternate | KeyFlag::rightOptionDevice);
    const auto releases = translation.begin({});
    EXPECT_EQ(releases, (std::vector<KeyEvent>{{Type::keyUp, VirtualKey::space, KeyFlag::alternate | KeyFlag::rightOptionDevice},
                                               {Type::flagsChanged, VirtualKey::rightOption, 0}}));
    EXPECT_EQ(translation.translate(108, false), std::nullopt);
}

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

struct KeyboardTest : testing::Test {
    CapturedLog log;
    RunLoop loop;
    X11Keyboard keyboard{loop};
    std::vector<KeyEvent> events;

    std::unique_ptr<EventTap> listen(X11Keyboard& at, std::uint32_t mask = all) {
        auto tap = at.createTap(mask, [this](const KeyEvent& event) { events.push_back(event); });
        if (tap) tap->enable(true);
        return tap;
    }
    bool await(std::size_t count) {
        return serveUntil(loop, [&] { return events.size() >= count; });
    }
};

TEST_F(KeyboardTest, TellsPressAndReleaseOfEachHoldKey) {
    const auto tap = listen(keyboard);
    ASSERT_TRUE(tap && tap->isEnabled());
    std::vector<KeyEvent> wanted;
    std::string keys;
    for (const auto& hold : holds) {
        std::ranges::copy(pressAndRelease(hold), std::back_inserter(wanted));
        keys += " key " + std::to_string(hold.keyCode);
    }
    shell("xdotool" + keys);
    EXPECT_TRUE(await(wanted.size()));
    EXPECT_EQ(events, wanted);
    shell("xdotool key 66"); // Caps Lock off again.
}

TEST_F(KeyboardTest, HearsAlsoWhileAnotherProgramHasTheKeyboard) {
    KeyboardGrab grab;
    EXPECT_FALSE(grab.isHeldByOther());
    EXPECT_EQ(grab.likelyOwner(), std::nullopt);
    auto other = std::move(*XcbConnection::open({}));
    const auto granted = other->reply(xcb_grab_keyboard_reply, xcb_grab_keyboard(other->get(), 1, other->root(), XCB_CURRENT_TIME,
                                                                                 XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    ASSERT_EQ(granted->status, XCB_GRAB_STATUS_SUCCESS);
    EXPECT_TRUE(grab.isHeldByOther());
    const auto tap = listen(keyboard);
    Keys().tap(108);
    EXPECT_TRUE(await(2));
    other.reset();
    EXPECT_TRUE(eventually([&] { return !grab.isHeldByOther(); }));
}

TEST_F(KeyboardTest, DoesNotMindALayoutSwitchedInMidHold) {
    const auto tap = listen(keyboard);
    const Keys keys;
    for (const auto* layout : {"us", "de", "us", "de"}) {
        events.clear();
        keys.send(108, true);
        EXPECT_TRUE(await(1));
        shell(std::string("setxkbmap ") + layout);
        keys.send(108, false);
        EXPECT_TRUE(await(2));
        const auto wanted = pressAndRelease(holds[0]);
        EXPECT_EQ(events, std::vector<KeyEvent>(wanted.begin(), wanted.end())) << layout;
    }
}

TEST_F(KeyboardTest, LosesNothingInAStorm) {
    const auto tap = listen(keyboard);
    const Keys keys;
    std::vector<KeyEvent> wanted;
    for (std::size_t i = 0; i < 1000; ++i) {
        const auto& hold = holds.at(i % holds.size());
        keys.tap(hold.keyCode);
        std::ranges::copy(pressAndRelease(hold), std::back_inserter(wanted));
    }
    EXPECT_TRUE(await(wanted.size()));
    serve(loop, seconds(0.02));
    EXPECT_EQ(events, wanted);
    if (holds.size() % 2 == 1) keys.tap(66);
}

TEST_F(KeyboardTest, KnowsWhatIsHeldWhenItBeginsAndSaysNoKeyIsDownTwice) {
    const Keys keys;
    keys.send(108, true);
    const auto tap = listen(keyboard);
    keys.send(108, true);
    keys.tap(65);
    keys.send(108, false);
    EXPECT_TRUE(await(3));
    const auto held = KeyFlag::alternate | KeyFlag::rightOptionDevice;
    EXPECT_EQ(events, (std::vector<KeyEvent>{{Type::keyDown, VirtualKey::space, held},
                                             {Type::keyUp, VirtualKey::space, held},
                                             {Type::flagsChanged, VirtualKey::rightOption, 0}}));
}

TEST_F(KeyboardTest, HandsOnWhatIsAskedForAndNothingAtRest) {
    std::size_t seen = 0;
    auto monitor = keyboard.addMonitor([&](const KeyEvent& event) { seen += event.type == Type::flagsChanged ? 1 : 100; });
    auto tap = listen(keyboard, Type::maskBit(Type::keyUp));
    const Keys keys;
    for (const auto& hold : {holds[0], holds[9]}) keys.tap(hold.keyCode);
    EXPECT_TRUE(serveUntil(loop, [&] { return seen == 2 && !events.empty(); }));
    EXPECT_EQ(events, (std::vector<KeyEvent>{{Type::keyUp, VirtualKey::space, 0}}));

    tap->enable(false);
    keys.tap(65);
    EXPECT_FALSE(tap->isEnabled());
    tap->enable(true);
    keys.tap(65);
    EXPECT_TRUE(await(2));
    keys.tap(65);
    tap.reset();
    monitor.reset();
    serve(loop, seconds(0.02));
    EXPECT_EQ(events.size(), 2U);
}

TEST_F(KeyboardTest, MayEndWithinItsOwnCall) {
    std::unique_ptr<EventTap> tap;
    int calls = 0;
    tap = keyboard.createTap(all, [&](const KeyEvent&) {
        ++calls;
        tap.reset();
    });
    tap->enable(true);
    Keys().tap(108);
    EXPECT_TRUE(serveUntil(loop, [&] { return calls == 1; }));
    serve(loop, seconds(0.02));
    EXPECT_EQ(calls, 1);
}

TEST_F(KeyboardTest, MarksALostServerOnceAndRests) {
    auto server = std::make_unique<OwnServer>();
    X11Keyboard there(loop, server->display());
    EXPECT_TRUE(there.isAvailable());
    const auto tap = there.createTap(all, [&](const KeyEvent& event) {
        events.push_back(event);
        if (event.type == Type::disabledByTimeout) events.back().flags = 77;
    });
    tap->enable(true);
    const auto monitor = there.addMonitor([](const KeyEvent&) {});
    Keys(server->display()).send(108, true);
    ASSERT_TRUE(await(1));
    server->kill();
    EXPECT_TRUE(await(2));
    EXPECT_EQ(events.back(), (KeyEvent{Type::disabledByTimeout, 0, 77}));
    EXPECT_FALSE(tap->isEnabled());
    EXPECT_FALSE(there.isAvailable());
    for (int i = 0; i < 3; ++i) tap->enable(true);
    EXPECT_FALSE(tap->isEnabled());
    serve(loop, seconds(0.02));
    EXPECT_EQ(events.size(), 2U);
    EXPECT_EQ(log.countOf("nicht zu hören"), 1U);
}

TEST_F(KeyboardTest, EndsAtOnceAlsoWithAStoppedServer) {
    const OwnServer server;
    X11Keyboard there(loop, server.display());
    auto tap = listen(there);
    server.stop();
    const auto begun = std::chrono::steady_clock::now();
    tap.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - begun, seconds(0.1));
    EXPECT_FALSE(there.createTap(all, [](const KeyEvent&) {})) << "and is refused within two seconds";
    EXPECT_LT(std::chrono::steady_clock::now() - begun, seconds(2.5));
}

TEST_F(KeyboardTest, IsRefusedWithoutAServer) {
    X11Keyboard nowhere(loop, ":9999");
    EXPECT_FALSE(nowhere.isAvailable());
    EXPECT_EQ(nowhere.createTap(all, [](const KeyEvent&) {}), nullptr);
    EXPECT_FALSE(nowhere.addMonitor([](const KeyEvent&) {}));
    EXPECT_FALSE(KeyboardGrab(":9999").isHeldByOther());
    EXPECT_TRUE(keyboard.isAvailable());
}

} // namespace
} // namespace querlin
