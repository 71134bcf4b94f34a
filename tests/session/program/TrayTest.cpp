// The program's item in real trays.

#include "ProgramFixture.h"

#include <fmt/format.h>

namespace querlin {
namespace {

class TrayTest : public ProgramFixture {
protected:
    /// The icon's window in the tray of the X server.
    static std::string embeddedIcon() {
        return shell("xwininfo -tree -id $(xdotool search --onlyvisible --class trayer | tail -n 1) | "
                     "sed -n 's/^ *\\(0x[0-9a-f]*\\) .*querlin.*/\\1/p' | head -n 1");
    }
    static bool isEmbedded() {
        return eventually([] { return !embeddedIcon().empty(); });
    }
    /// The item's connection on the bus, as the panel knows it.
    static std::string itemOnBus() {
        return shell("gdbus call --session --dest org.kde.StatusNotifierWatcher --object-path /StatusNotifierWatcher "
                     "--method org.freedesktop.DBus.Properties.Get org.kde.StatusNotifierWatcher "
                     "RegisteredStatusNotifierItems | grep -o ':[0-9.]*'");
    }
    static std::string menuCall(const std::string& item, const std::string& call) {
        return shell(fmt::format("gdbus call --session --dest {} --object-path /MenuBar --method com.canonical.dbusmenu.{}", item, call));
    }
};

TEST_F(TrayTest, an_x_server_s_tray_has_icon_and_menu) {
    if (!isInstalled("trayer")) GTEST_SKIP() << "trayer is not installed";
    const Program tray({"trayer", "--edge", "top", "--height", "26", "--widthtype", "request"});
    ASSERT_TRUE(eventually([] { return !shell("xdotool search --onlyvisible --class trayer").empty(); }));
    const auto running = start();
    ASSERT_TRUE(isEmbedded());
    EXPECT_FALSE(isShown("Querlin")) << "no window where there is a tray";

    // Clicks are repeated until the menu is there: an icon that has just been embedded may miss one.
    ASSERT_TRUE(eventually([] {
        shell(fmt::format("xdotool mousemove --window {} 8 8 click 3", embeddedIcon()));
        return eventually([] { return !shell("xwininfo -root -children | grep '\"querlin\".* 3[0-9][0-9]x3'").empty(); },
                          std::chrono::seconds(1));
    }));
    shell("xdotool key Up Return");
    EXPECT_EQ(exitOf(*running), 0) << "the last entry ends the program";
}

TEST_F(TrayTest, a_panel_reads_the_menu_from_the_bus_and_chooses_from_it) {
    if (!isInstalled("xfce4-panel")) GTEST_SKIP() << "xfce4-panel is not installed";
    const Program panel({"xfce4-panel", "--disable-wm-check"});
    ASSERT_TRUE(eventually([] {
        return shell("gdbus call --session --dest org.kde.StatusNotifierWatcher --object-path /StatusNotifierWatcher "
                     "--method org.freedesktop.DBus.Properties.Get org.kde.StatusNotifierWatcher "
                     "IsStatusNotifierHostRegistered") == "(<true>,)";
    }));
    const auto running = start();
    ASSERT_TRUE(eventually([] { return !itemOnBus().empty(); }));
    const auto item = itemOnBus();
    const auto menu = menuCall(item, "GetLayout -- 0 -1 '[]'");
    EXPECT_NE(menu.find("Aufnahme starten"), std::string::npos) << menu;
    EXPECT_EQ(shell(fmt::format("gdbus call --session --dest {} --object-path /StatusNotifierItem --method "
                                "org.freedesktop.DBus.Properties.Get org.kde.StatusNotifierItem ToolTip | grep -c Querlin",
                                item)),
              "1");

    const auto entry = shell(fmt::format("echo \"{}\" | grep -o \"([0-9]*, {{[^}}]*Gesetze nachschlagen\" | "
                                         "sed 's/.*(\\([0-9]*\\), .*/\\1/'",
                                         menu));
    menuCall(item, fmt::format("Event -- {} clicked '<0>' 0", entry));
    EXPECT_TRUE(eventually([] { return isShown("Gesetze nachschlagen – BGB und FamFG"); })) << entry;
}

} // namespace
} // namespace querlin
