// The program as a process: one instance, its name on the bus, its end, and what it leaves behind.

#include "ProgramFixture.h"

#include <csignal>

#include <sys/resource.h>

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

/// A crash leaves no memory behind, however generous the system is with core dumps.
TEST_F(ProgramTest, a_crash_leaves_no_core_dump) {
    const rlimit generous{RLIM_INFINITY, RLIM_INFINITY};
    if (::setrlimit(RLIMIT_CORE, &generous) != 0) GTEST_SKIP() << "core dumps can't be allowed here";
    const auto running = start();
    EXPECT_NE(shell(fmt::format("grep -E 'core file size +0 +0' /proc/{}/limits", running->id())), "");
    running->signal(SIGABRT);
    const int status = exitOf(*running);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_FALSE(WCOREDUMP(status)); // NOLINT: the system's macro
    const auto second = start();     // The lock has gone with the process.
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
