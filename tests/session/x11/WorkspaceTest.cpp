// The program in front, as a real window manager tells it.

#include "OwnServer.h"

#include "platform/x11/ApplicationNames.h"
#include "platform/x11/X11Workspace.h"
#include "support/CapturedLog.h"
#include "support/Desktop.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace querlin {
namespace {

TEST(ApplicationNamesTest, FindsByEachOfTheNamesOfAProgram) {
    const ApplicationNames names({{"org.xfce.mousepad", "Texteditor", "", "mousepad"},
                                  {"firefox-esr", "Firefox ESR", "firefox-esr", "firefox-esr"},
                                  {"writer", "Writer", "libreoffice-writer", "libreoffice"},
                                  {"calc", "Calc", "libreoffice-calc", "libreoffice"},
                                  {"flat.App", "Flach", "", "flatpak"}});
    EXPECT_EQ(names.ofIdentifier("org.xfce.Mousepad"), "Texteditor");
    EXPECT_EQ(names.ofIdentifier("Mousepad"), "Texteditor");
    EXPECT_EQ(names.ofIdentifier("Firefox-ESR"), "Firefox ESR");
    EXPECT_EQ(names.ofIdentifier("libreoffice-calc"), "Calc");
    EXPECT_EQ(names.ofIdentifier("unbekannt"), std::nullopt);
    EXPECT_EQ(names.ofExecutable("libreoffice"), "Writer");
    EXPECT_EQ(names.ofExecutable("flatpak"), std::nullopt) << "starts programs of many names";
}

struct WorkspaceTest : testing::Test {
    CapturedLog log;
    X11Workspace workspace;

    std::optional<RunningApplication> awaitFront(const std::string& identifier) {
        std::optional<RunningApplication> front;
        eventually([&] {
            front = workspace.frontmostApplication();
            return front && front->applicationId == identifier &&
                   workspace.applicationName(front->processIdentifier) == front->localizedName;
        });
        return front;
    }
};

TEST_F(WorkspaceTest, KnowsWhoIsInFront) {
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
    const auto name = shell("sed -n 's/^Name=//p' /usr/share/applications/org.xfce.mousepad.desktop | head -n 1");
    const Program editor({"mousepad", "--disable-server"});
    const auto front = awaitFront("org.xfce.mousepad");
    ASSERT_TRUE(front);
    EXPECT_EQ(front->processIdentifier, editor.id());
    EXPECT_EQ(front->localizedName, name);
}

TEST_F(WorkspaceTest, SurvivesWindowsThatVanish) {
    for (int i = 0; i < 3; ++i) {
        Program dialog({"zenity", "--info", "--text=da"});
        EXPECT_TRUE(eventually([this] { return workspace.frontmostApplication().has_value(); }));
        dialog.signal(SIGKILL);
        EXPECT_TRUE(eventually([this] { return !workspace.frontmostApplication().has_value(); }));
    }
    // The manager is slower than a window that goes.
    shell("xprop -root -f _NET_ACTIVE_WINDOW 32x -set _NET_ACTIVE_WINDOW 0x12345");
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
    EXPECT_EQ(log.lines(), std::vector<std::string>());
}

TEST_F(WorkspaceTest, NamesAProcess) {
    const Program sleeper({"sleep", "100"});
    EXPECT_TRUE(eventually([&] { return workspace.applicationName(sleeper.id()) == "Sleep"; }));
    EXPECT_EQ(workspace.applicationName(0), std::nullopt);
    EXPECT_EQ(workspace.applicationName(-5), std::nullopt);
}

TEST_F(WorkspaceTest, IsNothingWithoutManagerOrServer) {
    auto server = std::make_unique<OwnServer>();
    X11Workspace there(server->display());
    EXPECT_EQ(there.frontmostApplication(), std::nullopt) << "no window manager";
    server->kill();
    for (int i = 0; i < 5; ++i) EXPECT_EQ(there.frontmostApplication(), std::nullopt);
    EXPECT_LE(log.lines().size(), 1U);
    X11Workspace nowhere(":9999");
    EXPECT_EQ(nowhere.frontmostApplication(), std::nullopt);
}

} // namespace
} // namespace querlin
