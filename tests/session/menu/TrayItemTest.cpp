// The item over a scripted controller, in real trays: what they show of it, and what they do to it.

#include "platform/dbus/DBusThread.h"
#include "platform/dbus/NotifierHostWatch.h"
#include "platform/qt/QtMainQueue.h"
#include "support/Desktop.h"
#include "support/MenuWorld.h"

#include <fmt/format.h>

namespace querlin {
namespace {

class TrayItemTest : public ::testing::Test, protected MenuWorld {
protected:
    void SetUp() override {
        if (!isInVirtualDesktop()) GTEST_SKIP() << "needs tools/virtual-desktop";
    }
    ~TrayItemTest() override { item.reset(); } // Before its queue.
    void makeItem() { MenuWorld::makeItem(queue, panels.isThere()); }

    static bool until(const std::function<bool()>& reached, Duration longest = seconds(10)) {
        return eventually(
            [&] {
                QCoreApplication::processEvents();
                return reached();
            },
            longest);
    }
    /// What a command prints that needs our answer: it runs beside our event loop.
    static std::string ask(const std::string& command) {
        static int number = 0;
        const auto file = fmt::format("{}/answer{}", shell("echo $DESKTOP_DIR"), ++number);
        shell(fmt::format("( {{ {} ; }} > {}.part 2>&1; mv {}.part {} ) > /dev/null 2>&1 &", command, file, file, file));
        EXPECT_TRUE(until([&] { return std::filesystem::exists(file); })) << command;
        return shell("cat " + file);
    }

    // The system tray of the X server
    static std::unique_ptr<Program> startTrayer(const std::string& edge = "top") {
        return std::make_unique<Program>(std::vector<std::string>{"trayer", "--edge", edge, "--height", "26", "--widthtype", "request"});
    }
    /// The icon's window inside the tray's.
    static std::string embedded() {
        return shell("for id in $(xdotool search --onlyvisible --class '^trayer$'); do xwininfo -tree -id $id; done | "
                     "sed -n 's/^ *\\(0x[0-9a-f]*\\) \"querlin\".*/\\1/p' | head -n 1");
    }
    static bool isEmbedded() {
        return until([] { return !embedded().empty(); });
    }

    // The session bus
    static std::unique_ptr<Program> startPanel() {
        return std::make_unique<Program>(std::vector<std::string>{"xfce4-panel", "--disable-wm-check"});
    }
    /// The item's connection, as the panel knows it.
    static std::string itemOnBus() {
        return shell("gdbus call --session --dest org.kde.StatusNotifierWatcher --object-path /StatusNotifierWatcher "
                     "--method org.freedesktop.DBus.Properties.Get org.kde.StatusNotifierWatcher "
                     "RegisteredStatusNotifierItems 2>/dev/null | grep -o ':[0-9.]*'");
    }
    static bool isOnBus() {
        return until([] { return !itemOnBus().empty(); });
    }
    static std::string itemProperty(const std::string& name) {
        return ask(fmt::format("gdbus call --session --dest {} --object-path /StatusNotifierItem --method "
                               "org.freedesktop.DBus.Properties.Get org.kde.StatusNotifierItem {}",
                               itemOnBus(), name));
    }
    static std::string menuCall(const std::string& call) {
        return ask(
            fmt::format("gdbus call --session --dest {} --object-path /MenuBar --method com.canonical.dbusmenu.{}", itemOnBus(), call));
    }
    static std::string layout() { return menuCall("GetLayout -- 0 -1 '[]'"); }
    /// The number by which the panel knows an entry.
    static std::string idOf(const std::string& entry) {
        return shell(
            fmt::format("echo \"{}\" | grep -o \"([0-9]*, {{[^}}]*'{}'\" | sed 's/^(\\([0-9]*\\).*/\\1/' | tail -n 1", layout(), entry));
    }
    static void choose(const std::string& id) {
        EXPECT_EQ(menuCall(fmt::format("Event -- {} clicked '<0>' 0", id)), "()");
        QCoreApplication::processEvents(); // The toolkit answers before it acts.
    }

    QtMainQueue queue;
    DBusThread buses;
    NotifierHostWatch panels{queue, buses};
};

class SystemTrayTest : public TrayItemTest {
protected:
    void SetUp() override {
        if (!isInstalled("trayer")) GTEST_SKIP() << "trayer is not installed";
        TrayItemTest::SetUp();
    }
};

TEST_F(SystemTrayTest, trays_come_and_go) {
    makeItem();
    EXPECT_TRUE(until([] { return windowNamed("Querlin") != nullptr; })) << "nobody shows the icon";
    EXPECT_FALSE(windowNamed("Querlin")->isActiveWindow());
    world.press(); // The icon comes in the middle of a dictation.
    auto tray = startTrayer();
    EXPECT_TRUE(isEmbedded());
    EXPECT_TRUE(until([] { return !windowNamed("Querlin"); }));

    tray->signal(SIGKILL);
    EXPECT_TRUE(until([] { return embedded().empty(); }));
    tray = startTrayer("bottom");
    EXPECT_TRUE(isEmbedded()) << "a tray that has been started anew";
    EXPECT_EQ(windowNamed("Querlin"), nullptr) << "it has been quick enough";

    item->present();
    tray.reset();
    EXPECT_TRUE(until([] { return embedded().empty(); }));
    tray = startTrayer();
    EXPECT_TRUE(isEmbedded());
    EXPECT_NE(windowNamed("Querlin"), nullptr) << "the user has wished for it";
    const auto isClosed = [] {
        if (auto* window = windowNamed("Querlin")) window->close();
        return !windowNamed("Querlin");
    };
    EXPECT_TRUE(until(isClosed)) << "with a tray it may go";
}

class PanelTest : public TrayItemTest {
protected:
    void SetUp() override {
        if (!isInstalled("xfce4-panel")) GTEST_SKIP() << "xfce4-panel is not installed";
        TrayItemTest::SetUp();
    }
};

/// A panel holds on to the entries that it was given first.
TEST_F(PanelTest, shows_the_phase_and_keeps_entries_good_for_as_long_as_they_are_there) {
    const auto panel = startPanel();
    makeItem();
    ASSERT_TRUE(isOnBus());
    const auto pictureAtRest = itemProperty("IconPixmap");
    const auto toggle = idOf("Aufnahme starten");
    ASSERT_FALSE(toggle.empty());
    choose(toggle);
    EXPECT_EQ(world.phase(), DictationPhase::Kind::recording);
    EXPECT_NE(itemProperty("IconPixmap"), pictureAtRest);
    EXPECT_TRUE(itemProperty("ToolTip").contains("'Querlin – Aufnehmen'"));
    EXPECT_EQ(idOf("Aufnahme stoppen"), toggle);
    EXPECT_FALSE(idOf("Abbrechen").empty());
    world.wait(seconds(2));
    choose(toggle);
    world.wait(seconds(20));
    EXPECT_EQ(world.phase(), DictationPhase::Kind::idle);
    EXPECT_TRUE(idOf("Abbrechen").empty());
    EXPECT_EQ(itemProperty("IconPixmap"), pictureAtRest);

    choose(idOf("Letzten Text kopieren"));
    EXPECT_EQ(world.inserter.clipboard, world.controller.lastInsertedText().get());
    choose(idOf("Querlin beenden"));
    EXPECT_EQ(quits, 1);
}

TEST_F(PanelTest, a_panel_that_dies_gets_icon_and_menu_again) {
    makeItem();
    auto panel = startPanel();
    ASSERT_TRUE(isOnBus()) << "a panel that comes later";
    panel->signal(SIGKILL);
    panel.reset();
    EXPECT_TRUE(until([] { return itemOnBus().empty(); }));
    panel = startPanel();
    ASSERT_TRUE(isOnBus());
    choose(idOf("Querlin beenden"));
    EXPECT_EQ(quits, 1);
    EXPECT_EQ(windowNamed("Querlin"), nullptr);
}

} // namespace
} // namespace querlin
