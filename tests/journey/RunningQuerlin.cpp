#include "RunningQuerlin.h"

#include "state/Product.h"
#include "state/UsageStatistics.h"
#include "support/TempFolder.h"

#include <csignal>
#include <cstdlib>
#include <sstream>

#include <sys/wait.h>

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr Duration longestEnd = std::chrono::seconds(10);

int outcomeOf(int status) {
    if (WIFEXITED(status)) return WEXITSTATUS(status);
    return -WTERMSIG(status) - (WCOREDUMP(status) ? 128 : 0); // NOLINT: the system's macro
}

} // namespace

void RunningQuerlin::prepare(const std::function<void(AppSettings&)>& change) const {
    PreferencesStore store(paths_.preferencesFile(Product::applicationId), time_.runtime());
    AppSettings settings(store);
    change(settings);
}

void RunningQuerlin::start(std::vector<std::string> command) {
    std::error_code ignored;
    std::filesystem::remove(paths_.log, ignored);
    ::setenv("https_proxy", "http://127.0.0.1:9", 1); // Nobody is there: no test asks the portal.
    process_.emplace(std::move(command));
}

std::optional<int> RunningQuerlin::end(int signal) {
    ::kill(id(), signal);
    int status = 0;
    const bool hasEnded = eventually([&] { return ::waitpid(id(), &status, WNOHANG) == id(); }, longestEnd);
    process_.reset();
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
