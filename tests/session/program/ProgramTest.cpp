// The program as a process: one instance, its name on the bus, its end, and what it leaves behind.

#include "ProgramFixture.h"

#include <csignal>
#include <fstream>

#include <sys/resource.h>
#include <unistd.h>

#include <fmt/format.h>

namespace querlin {
namespace {

constexpr const char* program = QUERLIN_PROGRAM;

class ProgramTest : public ProgramFixture {};

TEST_F(ProgramTest, a_second_start_calls_the_first_one_to_attention) {
    const auto first = start();
    EXPECT_FALSE(isShown("Querlin"));
    EXPECT_EQ(resultOf(program), "0") << "without a word";
    EXPECT_TRUE(eventually([] { return isShown("Querlin"); }));
    EXPECT_TRUE(eventually([] { return shell("xdotool getactivewindow getwindowname") == "Querlin"; }));
}

TEST_F(ProgramTest, a_desktop_can_start_it_by_its_name_on_the_bus) {
    const auto first = start();
    EXPECT_TRUE(eventually([] {
        return resultOf("gdbus call --session --dest local.mandolan.querlin --object-path /local/mandolan/querlin "
                        "--method org.freedesktop.Application.Activate '{}'") == "()\n0";
    }));
    EXPECT_TRUE(eventually([] { return isShown("Querlin"); }));
    const auto refused = resultOf("gdbus call --session --dest local.mandolan.querlin --object-path "
                                  "/local/mandolan/querlin --method org.freedesktop.Application.Sing");
    EXPECT_NE(refused.find("UnknownMethod"), std::string::npos) << refused;
}

TEST_F(ProgramTest, signals_end_it_in_order) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        const auto running = start();
        running->signal(signal);
        EXPECT_EQ(exitOf(*running), 0) << signal;
        EXPECT_TRUE(logHas("=== Ende ===")) << signal;
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
    writeFile(settingsFile(), fmt::format(R"({{"hasCompletedOnboarding": true, "userDictionary": ["{}"]}})", word));
    {
        const auto running = start();
        const auto helper = [&] { return shell(fmt::format("pgrep -P {}", running->id())); };
        ASSERT_TRUE(eventually([&] { return !helper().empty(); }));
        const auto crashed = helper();
        ::kill(std::stoi(crashed), SIGABRT);
        running->signal(SIGABRT);
        const int status = exitOf(*running);
        EXPECT_TRUE(WIFSIGNALED(status));
        EXPECT_FALSE(WCOREDUMP(status)); // NOLINT: the system's macro
        EXPECT_TRUE(collector.works()) << "by now the helper's would be here too";
        EXPECT_EQ(collector.coreOf(crashed) + collector.coreOf(std::to_string(running->id())), "");
    }
    for (const bool isFiltered : {true, false}) { // Were one written all the same.
        const auto running = start();
        ::prlimit(running->id(), RLIMIT_CORE, &generous, nullptr);
        if (!isFiltered) writeFile(fmt::format("/proc/{}/coredump_filter", running->id()), "0x33");
        running->signal(SIGABRT);
        exitOf(*running);
        std::string core;
        EXPECT_TRUE(eventually([&] { return !(core = collector.coreOf(std::to_string(running->id()))).empty(); }));
        EXPECT_EQ(core.contains(word), !isFiltered);
    }
}

/// A portal looks into the process that asks it. Neither has the rights of an administrator, as on a user's desktop.
TEST_F(ProgramTest, a_real_portal_tells_it_of_dark_surfaces_at_the_start) {
    constexpr auto portal = "/usr/libexec/xdg-desktop-portal";
    if (!std::filesystem::exists(portal)) GTEST_SKIP() << "xdg-desktop-portal is not installed";
    const std::vector<std::string> asAUser = {::geteuid() == 0 ? "setpriv" : "env", ::geteuid() == 0 ? "--bounding-set=-sys_ptrace" : "--"};
    const auto with = [&](const char* command) { return std::vector{asAUser.front(), asAUser.back(), std::string(command)}; };
    shell("gsettings set org.gnome.desktop.interface color-scheme prefer-dark");
    const Program service(with(portal));
    ASSERT_TRUE(eventually([] {
        return shell("gdbus call --session -d org.freedesktop.DBus -o / -m org.freedesktop.DBus.NameHasOwner "
                     "org.freedesktop.portal.Desktop") == "(true,)";
    }));
    const Program running(with(program));
    EXPECT_TRUE(eventually([] { return isShown("Querlin"); })) << "no tray: the commands stand in a window";
    EXPECT_TRUE(eventually([] {
        return shell("import -window $(xdotool search --onlyvisible --name '^Querlin$') -resize 1x1 -format '%[fx:intensity<0.5]' info:") ==
               "1";
    }));
}

TEST_F(ProgramTest, without_a_graphical_session_it_says_so) {
    EXPECT_EQ(resultOf(fmt::format("env -u DISPLAY -u QT_QPA_PLATFORM {}", program)),
              "Querlin braucht eine grafische Sitzung (X11 oder XWayland); es ist keine zu erreichen.\n1");
}

/// Neither bus nor sound, notifications, window manager or accessibility.
TEST_F(ProgramTest, on_a_bare_display_it_runs_all_the_same) {
    Program running({"env", "-u", "DBUS_SESSION_BUS_ADDRESS", "-u", "XDG_RUNTIME_DIR", "DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nowhere",
                     "PULSE_SERVER=unix:/nowhere", program});
    EXPECT_TRUE(eventually([] { return logHas("installHotkey →"); }));
    EXPECT_TRUE(eventually([] { return isShown("Querlin"); })) << "no tray: the commands stand in a window";
    running.signal(SIGTERM);
    EXPECT_EQ(exitOf(running), 0);
}

} // namespace
} // namespace querlin
