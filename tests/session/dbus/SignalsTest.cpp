#include "Buses.h"

#include "foundation/RunLoop.h"
#include "platform/dbus/BusFileManager.h"
#include "platform/dbus/DBusThread.h"
#include "platform/dbus/DesktopSignals.h"
#include "support/CapturedLog.h"

#include <gtest/gtest.h>

#include <thread>

namespace querlin {
namespace {

using enum SystemSignal;
using Signals = std::vector<SystemSignal>;

constexpr Duration soon = std::chrono::milliseconds(50);

/// The adapter with one observer, which keeps all it is told.
class Observed {
public:
    Signals told;
    std::vector<SystemHold> holds;
    RunLoop loop;
    CountingQueue queue{loop};
    DBusThread buses{soon};
    DesktopSignals signals{queue, buses};
    Registration observing = observe();

    Registration observe() {
        return signals.observe([this](SystemSignal signal, SystemHold hold) {
            told.push_back(signal);
            holds.push_back(std::move(hold));
        });
    }
    bool comesTo(const Signals& expected) {
        return serveUntil(loop, [&] { return told.size() >= expected.size(); }) && told == expected;
    }
};

bool inhibitorsBecome(Login& login, const std::string& expected) {
    return eventually([&] { return login.inhibitors() == expected; });
}

TEST(DesktopSignals, SleepAndShutdownWaitUntilTheHoldIsLetGo) {
    Login login;
    Observed desktop;
    ASSERT_TRUE(inhibitorsBecome(login, "shutdown sleep"));

    login.prepareFor("Sleep", true);
    ASSERT_TRUE(desktop.comesTo({willSleep}));
    EXPECT_EQ(login.inhibitors(), "shutdown sleep");
    std::thread([hold = std::move(desktop.holds[0])]() mutable { hold.reset(); }).join();
    EXPECT_TRUE(inhibitorsBecome(login, "shutdown"));
    login.prepareFor("Sleep", false);
    EXPECT_TRUE(inhibitorsBecome(login, "shutdown sleep"));
    login.prepareFor("Sleep", true);
    ASSERT_TRUE(desktop.comesTo({willSleep, willSleep})) << "who has a hold is no echo";

    login.setActive("c1", false);
    ASSERT_TRUE(desktop.comesTo({willSleep, willSleep, sessionResigned}));
    EXPECT_EQ(desktop.holds[2], nullptr);
    login.prepareFor("Shutdown", true);
    ASSERT_TRUE(desktop.comesTo({willSleep, willSleep, sessionResigned, sessionResigned})) << "for its hold";
    desktop.observing.reset();
    EXPECT_EQ(login.inhibitors(), "shutdown sleep");
    desktop.holds.clear();
    EXPECT_TRUE(inhibitorsBecome(login, ""));
}

/// A lock told again and again, until it comes on whichever way is under test: echoes of it don't count.
bool isTold(Observed& desktop, int times, const std::function<void()>& lock) {
    return eventually([&] {
        lock();
        return desktop.queue.posted == times;
    });
}

class OurSession : public testing::TestWithParam<Login::Knows> {};

TEST_P(OurSession, ALockToldOnThreeWaysIsOneAndOnlyOurs) {
    Login login(GetParam());
    Speaker saver(Speaker::On::session);
    Speaker stranger(Speaker::On::session);
    const std::string name = "org.gnome.ScreenSaver";
    saver.own(name);
    Observed desktop;

    ASSERT_TRUE(isTold(desktop, 1, [&] { login.session("c1", "Lock"); }));
    login.session("c1", "SetLockedHint true");
    login.session("c1", "SetLockedHint false");
    for (const auto* call : {"Lock", "SetLockedHint true"}) login.session("c2", call);
    login.setActive("c2", false);
    login.session("c1", "Unlock");
    ASSERT_TRUE(isTold(desktop, 2, [&] { login.session("c1", "SetLockedHint true"); }));
    ASSERT_TRUE(isTold(desktop, 2, [&] { saver.emit("/", name, "ActiveChanged", true); }));
    saver.emit("/", name, "ActiveChanged", false);
    stranger.emit("/", name, "ActiveChanged", true);
    saver.emit("/", name, "ActiveChanged", false);
    EXPECT_TRUE(isTold(desktop, 3, [&] { saver.emit("/", name, "ActiveChanged", true); }));
    login.setActive("c1", false);
    EXPECT_TRUE(desktop.comesTo({screenLocked, screenLocked, screenLocked, sessionResigned}));
}

INSTANTIATE_TEST_SUITE_P(KnownBy, OurSession, testing::Values(Login::Knows::processes, Login::Knows::sessions),
                         [](const auto& instance) { return instance.param == Login::Knows::processes ? "process" : "name"; });

TEST(DesktopSignals, AnObserverIsNotToldOfWhatWasBefore) {
    Observed desktop;
    Speaker saver(Speaker::On::session);
    saver.own("org.gnome.ScreenSaver");
    ASSERT_TRUE(isTold(desktop, 1, [&] { saver.emit("/", "org.gnome.ScreenSaver", "ActiveChanged", true); }));
    desktop.observing = desktop.observe();
    serve(desktop.loop, soon);
    EXPECT_EQ(desktop.told, Signals());
}

TEST(DesktopSignals, TheLoginServiceAndItsBusMayComeBack) {
    const CapturedLog log;
    OwnBus bus("DBUS_SYSTEM_BUS_ADDRESS");
    Observed desktop;
    const auto goesOn = [&](std::size_t times) {
        Login login;
        if (!inhibitorsBecome(login, "shutdown sleep")) return false;
        login.prepareFor("Sleep", true);
        return serveUntil(desktop.loop, [&] { return desktop.told.size() == times; }) && desktop.holds.back() != nullptr;
    };
    ASSERT_TRUE(eventually([&] { return log.countOf("Der Systembus ist nicht erreichbar") == 1; }));
    bus.start();
    EXPECT_TRUE(goesOn(1));
    EXPECT_TRUE(goesOn(2)) << "another service at the same bus";
    bus.kill();
    ASSERT_TRUE(eventually([&] { return log.countOf("Der Systembus ist nicht erreichbar") == 2; }));
    bus.start();
    EXPECT_TRUE(goesOn(3)) << "a new bus";
    EXPECT_EQ(log.countOf("Der Systembus ist wieder erreichbar"), 2U);
    EXPECT_EQ(log.countOf("Der Sitzungsbus"), 0U);
}

TEST(BusFileManager, AMissingOneIsReported) {
    OwnBus session("DBUS_SESSION_BUS_ADDRESS");
    session.start();
    RunLoop loop;
    DBusThread buses{soon};
    BusFileManager files(loop, buses);
    int failures = 0;
    files.show("file:///etc/hosts", [&] { ++failures; });
    EXPECT_TRUE(serveUntil(loop, [&] { return failures == 1; }));
    session.kill();
    files.show("file:///etc/hosts", [&] { ++failures; });
    EXPECT_TRUE(serveUntil(loop, [&] { return failures == 2; }));
}

} // namespace
} // namespace querlin
