#pragma once

#include "support/Desktop.h"
#include "support/TempFolder.h"

#include <cstdlib>
#include <filesystem>
#include <memory>

#include <sys/wait.h>

#include <gtest/gtest.h>

namespace querlin {

/// The program as a process in a virtual desktop, set up already.
class ProgramFixture : public ::testing::Test {
protected:
    void SetUp() override {
        if (!isInVirtualDesktop()) GTEST_SKIP() << "needs tools/virtual-desktop";
        writeFile(settingsFile(), R"({"hasCompletedOnboarding": true, "updateLawsAutomatically": false})");
    }

    static std::string environment(const char* name) {
        const char* value = std::getenv(name);
        return value ? value : "";
    }
    static std::filesystem::path settingsFile() { return environment("XDG_CONFIG_HOME") + "/local.mandolan.querlin.json"; }
    static std::filesystem::path log() { return environment("XDG_STATE_HOME") + "/Querlin.log"; }
    static bool logHas(const std::string& text) { return contentOf(log()).contains(text); }
    /// Starts the program and waits until it listens.
    static std::unique_ptr<Program> start() {
        std::filesystem::remove(log());
        auto started = std::make_unique<Program>(std::vector<std::string>{QUERLIN_PROGRAM});
        EXPECT_TRUE(eventually([] { return logHas("Die Diktattaste wird gehört"); }));
        return started;
    }
    /// How a command of the shell ends, and what it says.
    static std::string resultOf(const std::string& command) { return shell("(timeout 10 " + command + ") 2>&1; echo $?"); }
    static int exitOf(const Program& process) {
        int status = -1;
        eventually([&] { return ::waitpid(process.id(), &status, WNOHANG) == process.id(); });
        return status;
    }
    static bool isShown(const std::string& title) { return !shell("xdotool search --onlyvisible --name '^" + title + "$'").empty(); }
};

} // namespace querlin
