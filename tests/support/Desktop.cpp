#include "support/Desktop.h"

#include "support/TempFolder.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <thread>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace querlin {

namespace {

constexpr Duration betweenLooks = std::chrono::milliseconds(2);

struct ClosePipe {
    void operator()(FILE* pipe) const { ::pclose(pipe); }
};

} // namespace

bool isInVirtualDesktop() { return std::getenv("DESKTOP_ID") != nullptr; }

Program::Program(std::vector<std::string> commandLine) {
    const char* folder = std::getenv("DESKTOP_DIR");
    const auto log = folder ? std::string(folder) + "/log/" + commandLine.front().substr(commandLine.front().rfind('/') + 1) : "/dev/null";
    std::vector<char*> arguments;
    for (auto& part : commandLine) arguments.push_back(part.data());
    arguments.push_back(nullptr);
    id_ = ::fork();
    if (id_ != 0) {
        ::setpgid(id_, id_); // Here too: whichever is first.
        return;
    }
    ::prctl(PR_SET_PDEATHSIG, SIGKILL); // Of the thread that starts it.
    ::setpgid(0, 0);
    ::setenv("TSAN_OPTIONS", "report_bugs=0", 1); // What toolkits do isn't under test.
    const int silence = ::open("/dev/null", O_RDONLY);
    const int output = ::open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    ::dup2(silence, STDIN_FILENO);
    ::dup2(output, STDOUT_FILENO);
    ::dup2(output, STDERR_FILENO);
    ::execvp(arguments.front(), arguments.data());
    ::_exit(127);
}

Program::~Program() {
    if (id_ < 0) return;
    ::kill(-id_, SIGCONT);
    ::kill(-id_, SIGKILL);
    ::waitpid(id_, nullptr, 0);
}

void Program::signal(int number) const { ::kill(-id_, number); }

std::string shell(const std::string& command) {
    const std::unique_ptr<FILE, ClosePipe> pipe(::popen((command + " 2>/dev/null").c_str(), "re"));
    std::string text;
    std::array<char, 4096> part{};
    while (pipe) {
        const auto count = std::fread(part.data(), 1, part.size(), pipe.get());
        if (count == 0) break;
        text.append(part.data(), count);
    }
    while (text.ends_with('\n')) text.pop_back();
    return text;
}

bool isInstalled(const std::string& program) { return !shell("command -v " + program).empty(); }

std::vector<std::string> firefoxWith(const std::filesystem::path& folder, const std::string& body) {
    writeFile(folder / "user.js", "user_pref('datareporting.policy.dataSubmissionPolicyBypassNotification', true);\n"
                                  "user_pref('datareporting.policy.firstRunURL', '');\n"
                                  "user_pref('browser.aboutwelcome.enabled', false);\n");
    const auto page = folder / "page.html";
    writeFile(page, "<meta charset=utf-8><title>Seite</title>" + body);
    return {"firefox-esr", "--no-remote", "--profile", folder.string(), page.string()};
}

bool eventually(const std::function<bool()>& reached, Duration longest) {
    const auto deadline = std::chrono::steady_clock::now() + longest;
    while (!reached()) {
        if (std::chrono::steady_clock::now() > deadline) return reached();
        std::this_thread::sleep_for(betweenLooks);
    }
    return true;
}

bool serveUntil(RunLoop& loop, const std::function<bool()>& reached, Duration longest) {
    const auto deadline = std::chrono::steady_clock::now() + longest;
    while (!reached()) {
        if (std::chrono::steady_clock::now() > deadline) return reached();
        serve(loop, betweenLooks);
    }
    return true;
}

void serve(RunLoop& loop, Duration span) {
    const auto over = loop.after(span, [&loop] { loop.quit(); });
    loop.run();
}

} // namespace querlin
