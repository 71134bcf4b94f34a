// Programs that hang and buses that go: nobody is held up, and all works again afterwards.

#include "Fields.h"
#include "support/TempFolder.h"

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <thread>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace querlin {
namespace {

using std::chrono::milliseconds;

constexpr Duration longestLook = milliseconds(250);

template<class Action>
Duration spanOf(Action action) {
    const auto begun = std::chrono::steady_clock::now();
    action();
    return std::chrono::steady_clock::now() - begun;
}

/// The process that owns a name on this desktop's session bus or, with its address, on another one.
std::int32_t owner(const std::string& name, const std::string& bus = "--session") {
    return number(shell("dbus-send " + bus +
                        " --print-reply=literal --dest=org.freedesktop.DBus /org/freedesktop/DBus "
                        "org.freedesktop.DBus.GetConnectionUnixProcessID string:" +
                        name + " | awk '{print $2}'"))
        .value_or(0);
}

std::string accessibilityBus() {
    return "--bus=" + shell("dbus-send --session --print-reply=literal --dest=org.a11y.Bus /org/a11y/bus org.a11y.Bus.GetAddress "
                            "| awk '{print $1}'");
}

/// Of this desktop alone: others have theirs.
std::int32_t accessibilityBusProcess() {
    return number(shell("pgrep -x -P " + std::to_string(owner("org.a11y.Bus")) + " dbus-daemon")).value_or(0);
}

struct FaultsTest : FieldsTest {
    /// All that a dictation asks, with the window in front known before.
    Duration timedLook() {
        return spanOf([this] { (void)look(); });
    }
};

TEST_F(FaultsTest, AProgramThatHangsHoldsNobodyUp) {
    const Program editor({"mousepad", "--disable-server"});
    ASSERT_TRUE(becomes("Textbereich: "));
    knownFront = front();
    AtspiAccessibility fresh{[this] { return front(); }}; // It has not hinted at a program that was just coming up.
    ASSERT_TRUE(fresh.isAvailable());
    editor.signal(SIGSTOP);
    EXPECT_EQ(fresh.searchedField(), std::unexpected(FieldFault::noAnswer));
    EXPECT_EQ(accessibility.heardField(), std::unexpected(FieldFault::noAnswer));
    EXPECT_EQ(accessibility.searchedField(), std::unexpected(FieldFault::noAnswer));
    EXPECT_LT(spanOf([&] { (void)accessibility.focusedField(); }), milliseconds(20)) << "it is left alone for a second";
    ASSERT_TRUE(eventually([&] { return timedLook() > milliseconds(50); })) << "then it is asked again";
    for (int i = 0; i < 3; ++i) EXPECT_LT(timedLook(), longestLook);
    editor.signal(SIGCONT);
    EXPECT_TRUE(becomes("Textbereich: "));
}

TEST_F(FaultsTest, AProgramThatIsSlowHoldsNobodyUp) {
    const Program editor({"mousepad", "--disable-server"});
    ASSERT_TRUE(becomes("Textbereich: "));
    knownFront = front();
    std::atomic<bool> isOver = false;
    std::thread brake([&] {
        while (!isOver) {
            editor.signal(SIGSTOP);
            std::this_thread::sleep_for(milliseconds(60));
            editor.signal(SIGCONT);
            std::this_thread::sleep_for(milliseconds(1));
        }
    });
    Duration longest{};
    for (const auto end = std::chrono::steady_clock::now() + milliseconds(1500); std::chrono::steady_clock::now() < end;)
        longest = std::max(longest, timedLook());
    isOver = true;
    brake.join();
    EXPECT_GT(longest, milliseconds(50)) << "it was slow";
    EXPECT_LT(longest, longestLook);
    EXPECT_TRUE(becomes("Textbereich: "));
}

TEST_F(FaultsTest, ABusThatDiesIsFoundAgain) {
    const Program editor({"mousepad", "--disable-server"});
    ASSERT_TRUE(becomes("Textbereich: "));
    EXPECT_TRUE(accessibility.isAvailable());
    const auto bus = accessibilityBusProcess();
    const auto launcher = owner("org.a11y.Bus");
    ASSERT_TRUE(bus > 0 && launcher > 0);
    ::kill(launcher, SIGKILL);
    ::kill(bus, SIGKILL);
    EXPECT_TRUE(eventually([&] { return !accessibility.heardField(); })) << "neither a crash nor an old answer";
    EXPECT_TRUE(eventually([&] { return !accessibility.isAvailable(); }));
    EXPECT_TRUE(eventually([&] { return accessibility.requestEnable(); })) << "the session's bus starts another one";
    const Program another({"zenity", "--entry", "--entry-text=neu"});
    EXPECT_TRUE(becomes("Textfeld: neu"));
}

TEST_F(FaultsTest, ARegistryThatDiesIsToldAgainWhatToSend) {
    const Program editor({"mousepad", "--disable-server"});
    ASSERT_TRUE(becomes("Textbereich: "));
    const auto registry = owner("org.a11y.atspi.Registry", accessibilityBus());
    ASSERT_GT(registry, 0);
    ::kill(registry, SIGKILL);
    ASSERT_TRUE(eventually([&] { return !accessibility.isAvailable(); }));
    ASSERT_TRUE(eventually([&] { return accessibility.isAvailable(); }));
    const Program another({"zenity", "--entry", "--entry-text=neu"});
    const auto isHeard = [&] {
        const auto field = accessibility.heardField();
        return field && described(**field) == "Textfeld: neu";
    };
    EXPECT_TRUE(eventually(isHeard)) << "heard, not searched for";
}

TEST_F(FaultsTest, ABusThatHangsHoldsNobodyUp) {
    const Program editor({"mousepad", "--disable-server"});
    ASSERT_TRUE(becomes("Textbereich: "));
    knownFront = front();
    const auto bus = accessibilityBusProcess();
    ASSERT_GT(bus, 0);
    auto other = std::make_unique<AtspiAccessibility>([this] { return front(); });
    ASSERT_TRUE(other->isAvailable());
    ::kill(bus, SIGSTOP);
    for (int i = 0; i < 3; ++i) EXPECT_LT(timedLook(), longestLook);
    const auto connecting = [&] { EXPECT_EQ(other->focusedField(), std::unexpected(FieldFault::unavailable)); };
    EXPECT_LT(spanOf(connecting), longestLook) << "one that isn't connected yet";
    EXPECT_LT(spanOf([&] { other.reset(); }), milliseconds(50)) << "the end waits for nobody";
    ::kill(bus, SIGCONT);
    EXPECT_TRUE(becomes("Textbereich: "));
}

TEST(AtspiAccessibility, WithoutABusThereIsNothing) {
    ::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere", 1);
    const CapturedLog log;
    AtspiAccessibility accessibility([] { return std::optional<std::int32_t>(1); });
    EXPECT_FALSE(accessibility.isAvailable());
    EXPECT_FALSE(accessibility.requestEnable());
    EXPECT_EQ(accessibility.focusedField(), std::unexpected(FieldFault::unavailable));
    EXPECT_EQ(log.countOf("nicht erreichbar ("), 1U);
}

TEST(AtspiAccessibility, ASessionBusThatNeverAnswersIsWaitedForOnce) {
    const TempFolder folder;
    const auto path = (folder / "bus").string();
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof(address.sun_path) - 1);
    const int mute = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(::bind(mute, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    ASSERT_EQ(::listen(mute, 8), 0);
    ::setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + path).c_str(), 1);
    const CapturedLog log;
    std::unique_ptr<AtspiAccessibility> accessibility;
    const auto make = [&] { accessibility = std::make_unique<AtspiAccessibility>([] { return std::optional<std::int32_t>(1); }); };
    EXPECT_LT(spanOf(make), milliseconds(50));
    EXPECT_LT(spanOf([&] { EXPECT_FALSE(accessibility->isAvailable()); }), milliseconds(600));
    EXPECT_LT(spanOf([&] { EXPECT_FALSE(accessibility->isAvailable()); }), milliseconds(50));
    EXPECT_LT(spanOf([&] { accessibility.reset(); }), milliseconds(50)) << "in the middle of an attempt";
    ::close(mute);
}

} // namespace
} // namespace querlin
