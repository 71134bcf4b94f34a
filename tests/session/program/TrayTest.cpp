// The program's icon in a real tray; what the menu does there is in session/menu.

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

} // namespace
} // namespace querlin
