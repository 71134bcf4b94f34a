#include "RunningQuerlin.h"

#include "state/Product.h"
#include "state/UsageStatistics.h"
#include "support/TempFolder.h"

#include <csignal>
#include <cstdlib>
#include <sstream>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr Duration longestEnd = std::chrono::seconds(10);

int outcomeOf(int status) { return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status); }

} // namespace

RunningQuerlin::~RunningQuerlin() {
    if (isRunning()) end(SIGKILL);
}

void RunningQuerlin::prepare(const std::function<void(AppSettings&)>& change) const {
    PreferencesStore store(paths_.preferencesFile(Product::applicationId), time_.runtime());
    AppSettings settings(store);
    change(settings);
}

void RunningQuerlin::start() {
    std::error_code ignored;
    std::filesystem::remove(paths_.log, ignored);
    const auto output = std::filesystem::path(std::getenv("DESKTOP_DIR")) / "log" / "querlin";
    id_ = ::fork();
    if (id_ != 0) return;
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);               // Of the thread that starts it.
    ::setenv("https_proxy", "http://127.0.0.1:9", 1); // Nobody is there: no test asks the portal.
    const int silence = ::open("/dev/null", O_RDONLY);
    const int words = ::open(output.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    ::dup2(silence, STDIN_FILENO);
    ::dup2(words, STDOUT_FILENO);
    ::dup2(words, STDERR_FILENO);
    ::execl(QUERLIN_PROGRAM, QUERLIN_PROGRAM, nullptr);
    ::_exit(127);
}

std::optional<int> RunningQuerlin::end(int signal) {
    if (!isRunning()) return std::nullopt;
    ::kill(id_, signal);
    int status = 0;
    const bool hasEnded = eventually([&] { return ::waitpid(id_, &status, WNOHANG) == id_; }, longestEnd);
    if (!hasEnded) {
        ::kill(id_, SIGKILL);
        ::waitpid(id_, &status, 0);
    }
    id_ = -1;
    return hasEnded ? std::optional(outcomeOf(status)) : std::nullopt;
}

std::string RunningQuerlin::log() const { return contentOf(paths_.log); }

std::size_t RunningQuerlin::countOf(const std::string& part) const {
    std::istringstream lines(log());
    std::size_t count = 0;
    for (std::string line; std::getline(lines, line);) count += static_cast<std::size_t>(line.contains(part));
    return count;
}

bool RunningQuerlin::says(const std::string& line, Duration longest) const {
    return eventually([&] { return has(line); }, longest);
}

std::vector<DictationEntry> RunningQuerlin::history() const { return DictationHistory(paths_.support, time_.runtime()).entries(); }

std::string RunningQuerlin::statistics() const {
    PreferencesStore store(paths_.preferencesFile(Product::applicationId), time_.runtime());
    const UsageStatistics statistics(store, time_);
    return fmt::format("{} Diktate, {} Wörter", statistics.dictationCount.get(), statistics.wordCount.get());
}

std::vector<std::string> RunningQuerlin::rescued() const { return fileNames(paths_.rescuedDictations()); }

std::vector<std::string> RunningQuerlin::recordings() const { return fileNames(paths_.recordings); }

std::string RunningQuerlin::textSoFar() const {
    for (const auto& name : recordings()) {
        if (name.ends_with(".txt")) return contentOf(paths_.recordings / name);
    }
    return {};
}

} // namespace querlin
