// The program as a process: one instance, its name on the bus, its end, and what it leaves behind.

#include "RunningQuerlin.h"
#include "support/TempFolder.h"

#include <csignal>
#include <fstream>

#include <sys/resource.h>
#include <unistd.h>

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace querlin {
namespace {

/// Set up already.
struct ProgramTest : testing::Test {
    RunningQuerlin querlin;

    void SetUp() override {
        querlin.prepare([](AppSettings& settings) {
            settings.hasCompletedOnboarding.set(true);
            settings.updateLawsAutomatically.set(false);
        });
    }
    void start() {
        querlin.start();
        ASSERT_TRUE(querlin.listens());
    }
    /// How a command of the shell ends, and what it says.
    static std::string resultOf(const std::string& command) { return shell("(timeout 10 " + command + ") 2>&1; echo $?"); }
    static bool isShown() { return !shell("xdotool search --onlyvisible --name '^Querlin$'").empty(); }
};

TEST_F(ProgramTest, a_second_start_calls_the_first_one_to_attention) {
    start();
    EXPECT_FALSE(isShown());
    EXPECT_EQ(resultOf(QUERLIN_PROGRAM), "0") << "without a word";
    EXPECT_TRUE(eventually([] { return shell("xdotool getactivewindow getwindowname") == "Querlin"; }));
}

TEST_F(ProgramTest, a_desktop_can_start_it_by_its_name_on_the_bus) {
    start();
    const std::string call = "gdbus call --session --dest local.mandolan.querlin --object-path /local/mandolan/querlin "
                             "--method org.freedesktop.Application.";
    EXPECT_TRUE(eventually([&] { return resultOf(call + "Activate '{}'") == "()\n0"; }));
    EXPECT_TRUE(eventually(isShown));
    EXPECT_TRUE(resultOf(call + "Sing").contains("UnknownMethod"));
}

TEST_F(ProgramTest, signals_end_it_in_order) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        start();
        EXPECT_EQ(querlin.end(signal), 0) << signal;
        EXPECT_TRUE(querlin.has("=== Ende ===")) << signal;
    }
}

/// What the kernel hands over when a program crashes goes into a folder, as systems that collect crashes do it.
class CrashCollector {
public:
    CrashCollector() {
        writeFile(folder_ / "collect", fmt::format("#!/bin/sh\ncat >'{0}/part' && mv '{0}/part' \"{0}/$1\"\n", folder_.path().string()));
        shell("chmod +x " + (folder_ / "collect").string());
        std::ofstream(pattern) << fmt::format("|{} %p", (folder_ / "collect").string());
    }
    ~CrashCollector() { std::ofstream(pattern) << before_; }
    CrashCollector(const CrashCollector&) = delete;
    CrashCollector& operator=(const CrashCollector&) = delete;

    bool works() const {
        return eventually([&] { return !coreOf(shell("sh -c 'echo $$; kill -ABRT $$'")).empty(); }, std::chrono::seconds(3));
    }
    std::string coreOf(const std::string& process) const { return contentOf(folder_ / process); }

private:
    static constexpr auto pattern = "/proc/sys/kernel/core_pattern";
    TempFolder folder_;
    const std::string before_ = contentOf(pattern);
};

/// However generous the system is with core dumps: neither the program's nor the helper's memory is collected.
TEST_F(ProgramTest, a_crash_leaves_no_word_behind) {
    const rlimit generous{RLIM_INFINITY, RLIM_INFINITY};
    const CrashCollector collector;
    if (::setrlimit(RLIMIT_CORE, &generous) != 0 || !collector.works()) GTEST_SKIP() << "core dumps can't be collected here";
    const auto word = fmt::format("Geheimwort{}", ::getpid());
    querlin.prepare([&](AppSettings& settings) { settings.userDictionary.set({word}); });
    start();
    const auto program = std::to_string(querlin.id());
    std::string helper;
    ASSERT_TRUE(eventually([&] { return !(helper = shell("pgrep -P " + program)).empty(); }));
    ::kill(std::stoi(helper), SIGABRT);
    EXPECT_EQ(querlin.end(SIGABRT), -SIGABRT);
    EXPECT_TRUE(collector.works()) << "by now the helper's would be here too";
    EXPECT_EQ(collector.coreOf(helper) + collector.coreOf(program), "");
    for (const bool isFiltered : {true, false}) { // Were one written all the same.
        start();                                  // The lock has gone with the process.
        const auto id = querlin.id();
        ::prlimit(id, RLIMIT_CORE, &generous, nullptr);
        if (!isFiltered) writeFile(fmt::format("/proc/{}/coredump_filter", id), "0x33");
        EXPECT_EQ(querlin.end(SIGABRT), -SIGABRT - 128);
        std::string core;
        EXPECT_TRUE(eventually([&] { return !(core = collector.coreOf(std::to_string(id))).empty(); }));
        EXPECT_EQ(core.contains(word), !isFiltered);
    }
}

/// A portal looks into the process that asks it. Neither has the rights of an administrator, as on a user's desktop.
TEST_F(ProgramTest, a_real_portal_tells_it_of_dark_surfaces_at_the_start) {
    constexpr auto portal = "/usr/libexec/xdg-desktop-portal";
    if (!std::filesystem::exists(portal)) GTEST_SKIP() << "xdg-desktop-portal is not installed";
    const std::string asAUser = ::geteuid() == 0 ? "exec setpriv --bounding-set=-sys_ptrace " : "exec ";
    shell("gsettings set org.gnome.desktop.interface color-scheme prefer-dark");
    const Program service({"sh", "-c", asAUser + portal});
    ASSERT_TRUE(eventually([] {
        return shell("gdbus call --session -d org.freedesktop.DBus -o / -m org.freedesktop.DBus.NameHasOwner "
                     "org.freedesktop.portal.Desktop") == "(true,)";
    }));
    querlin.start({"sh", "-c", asAUser + QUERLIN_PROGRAM});
    EXPECT_TRUE(eventually(isShown)) << "no tray: the commands stand in a window";
    EXPECT_TRUE(eventually([] {
        return shell("import -window $(xdotool search --onlyvisible --name '^Querlin$') -resize 1x1 -format '%[fx:intensity<0.5]' info:") ==
               "1";
    }));
}

TEST_F(ProgramTest, without_a_graphical_session_it_says_so) {
    EXPECT_EQ(resultOf("env -u DISPLAY -u QT_QPA_PLATFORM " QUERLIN_PROGRAM),
              "Querlin braucht eine grafische Sitzung (X11 oder XWayland); es ist keine zu erreichen.\n1");
}

/// Neither bus nor sound, notifications, window manager or accessibility.
TEST_F(ProgramTest, on_a_bare_display_it_runs_all_the_same) {
    querlin.start({"env", "-u", "DBUS_SESSION_BUS_ADDRESS", "-u", "XDG_RUNTIME_DIR", "DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nowhere",
                   "PULSE_SERVER=unix:/nowhere", QUERLIN_PROGRAM});
    EXPECT_TRUE(querlin.says("installHotkey →"));
    EXPECT_TRUE(eventually(isShown)) << "no tray: the commands stand in a window";
    EXPECT_EQ(querlin.end(SIGTERM), 0);
}

/// What the menu does there is in session/menu.
TEST_F(ProgramTest, where_there_is_a_tray_it_shows_an_icon_and_no_window) {
    if (!isInstalled("trayer")) GTEST_SKIP() << "trayer is not installed";
    const Program tray({"trayer", "--edge", "top", "--height", "26", "--widthtype", "request"});
    ASSERT_TRUE(eventually([] { return !shell("xdotool search --onlyvisible --class trayer").empty(); }));
    start();
    EXPECT_TRUE(eventually(
        [] { return !shell("xwininfo -tree -id $(xdotool search --onlyvisible --class trayer | tail -n 1) | grep querlin").empty(); }));
    EXPECT_FALSE(isShown());
}

} // namespace
} // namespace querlin
