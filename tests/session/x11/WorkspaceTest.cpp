// The program in front, as a real window manager tells it.

#include "OwnServer.h"

#include "platform/x11/X11Workspace.h"
#include "state/AppProfile.h"
#include "support/CapturedLog.h"
#include "support/Desktop.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

struct WorkspaceTest : testing::Test {
    CapturedLog log;
    X11Workspace workspace;

    bool awaitFront(const std::string& identifier, const std::string& name) {
        return eventually([&] {
            const auto front = workspace.frontmostApplication();
            return front && front->applicationId == identifier && front->localizedName == name;
        });
    }
};

TEST_F(WorkspaceTest, KnowsWhoIsInFront) {
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
    const auto name = shell("sed -n 's/^Name=//p' /usr/share/applications/org.xfce.mousepad.desktop | head -n 1");
    const Program editor({"mousepad", "--disable-server"});
    ASSERT_TRUE(awaitFront("org.xfce.mousepad", name)) << "the installed programs' names are read in the background";
    EXPECT_EQ(workspace.frontmostApplication()->processIdentifier, editor.id());
}

/// Which of the delivered profiles counts in programs as distributions deliver them; those that are installed.
TEST_F(WorkspaceTest, FindsTheProfilesOfRealPrograms) {
    const auto profileInFront = [this]() -> std::string {
        const auto front = workspace.frontmostApplication();
        if (!front || !front->applicationId) return "nobody";
        const auto& profiles = AppProfile::builtIn();
        const auto profile =
            std::ranges::find_if(profiles, [&](const AppProfile& candidate) { return candidate.isFor(*front->applicationId); });
        return profile == profiles.end() ? "general" : profile->appName;
    };
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"mousepad --disable-server", "Mousepad"},
        {"xfce4-terminal --disable-server", "general"},
        {"featherpad --standalone", "general"},
        {"firefox-esr --no-remote about:blank", "Firefox"},
        {"chromium --no-sandbox --no-first-run --password-store=basic about:blank", "Chromium"},
        {"thunderbird", "Thunderbird"},
        {"evolution", "Evolution"},
        {"kmail", "KMail"},
        {"soffice --writer --norestore --nologo", "LibreOffice Writer"},
        {"gedit", "gedit"},
        {"gnome-text-editor", "GNOME-Texteditor"},
        {"kate", "Kate"},
        {"telegram-desktop", "Telegram"},
        {"nextcloud", "Nextcloud"},
        {"signal-desktop --no-sandbox", "Signal"},
        {"konsole", "general"},
    };
    for (const auto& [command, profile] : rows) {
        if (!isInstalled(command.substr(0, command.find(' ')))) continue;
        const Program program({"sh", "-c", "exec " + command});
        EXPECT_TRUE(eventually([&] { return profileInFront() == profile; }, std::chrono::seconds(60)))
            << command << " is " << profileInFront();
        program.signal(SIGKILL);
        ASSERT_TRUE(eventually([&] { return profileInFront() == "nobody"; }));
    }
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
