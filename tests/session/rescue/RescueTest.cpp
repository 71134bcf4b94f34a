// A recording that the login service cuts short, with its real signals and the real notification service: the text is
// on disk before the machine may go on.

#include "../dbus/Buses.h"

#include "foundation/ThreadPool.h"
#include "platform/dbus/DBusThread.h"
#include "platform/dbus/DesktopNotifications.h"
#include "platform/dbus/DesktopSignals.h"
#include "support/DictationWorld.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

struct RescueTest : testing::Test {
    Login login;
    TempFolder folder;
    CapturedLog log;
    RunLoop loop;
    SystemClock clock;
    ThreadPool pool{1};
    DBusThread buses;
    DesktopSignals signals{loop, buses};
    DesktopNotifications notifications{buses};
    Notifier notifier{&notifications};
    FakeSurroundings with{Runtime{loop, clock, pool}, folder.path()};
    DictationRescue rescue{with.rescueFolder, with.inserter, notifier};
    DictationController controller = makeController();

    DictationController makeController() {
        const auto c = with.collaborators();
        return {Runtime{loop, clock, pool}, {c.settings,
                                             c.statistics,
                                             c.history,
                                             rescue,
                                             notifier,
                                             c.windows,
                                             c.sounds,
                                             c.hotkey,
                                             c.permissions,
                                             c.contextDetector,
                                             c.inserter,
                                             c.correctionWatcher,
                                             signals,
                                             c.recorder,
                                             c.audioDevices,
                                             c.transcribers,
                                             c.vocabulary,
                                             c.textStages,
                                             c.ruleBasedEnhancer,
                                             c.enhancement}};
    }
    void record() {
        controller.start();
        ASSERT_TRUE(eventually([&] { return login.inhibitors() == "shutdown sleep"; }));
        with.services.script.result = "Frau Meier & Söhne";
        controller.beginDictation();
        serve(loop, std::chrono::milliseconds(500));
    }
    std::vector<std::string> rescued() { return fileNames(with.rescueFolder.path()); }
    static std::string notified() { return shell("dunstctl close-all; dunstctl history"); }
};

TEST_F(RescueTest, TheMachineSleepsWhenTheTextIsOnDisk) {
    with.services.script.delay = seconds(0.8);
    record();
    login.prepareFor("Sleep", true);
    ASSERT_TRUE(serveUntil(loop, [&] { return log.countOf("[controller] Diktat unterbrochen: ") == 1; }));
    serve(loop, std::chrono::milliseconds(100));
    EXPECT_EQ(login.inhibitors(), "shutdown sleep") << "held until then";
    EXPECT_TRUE(rescued().empty());
    ASSERT_TRUE(serveUntil(loop, [&] { return login.inhibitors() == "shutdown"; }));
    EXPECT_EQ(rescued().size(), 2U) << "text and sound";
    EXPECT_TRUE(eventually([] { return notified().contains("Frau Meier"); })) << notified();
    EXPECT_TRUE(notified().contains("Diktat nicht eingefügt"));
}

TEST_F(RescueTest, ALockSendsTheTextIntoTheFolder) {
    record();
    login.session("c1", "Lock");
    EXPECT_TRUE(serveUntil(loop, [&] { return rescued().size() == 2; }));
    EXPECT_TRUE(log.has("[controller] Diktat unterbrochen: Der Bildschirm wurde gesperrt"));
    EXPECT_TRUE(eventually([] { return notified().contains("Der Bildschirm wurde gesperrt."); })) << notified();
    EXPECT_TRUE(with.inserter.delivered.empty());
}

} // namespace
} // namespace querlin
