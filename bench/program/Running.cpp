#include "Running.h"

#include "foundation/RunLoop.h"
#include "foundation/ThreadPool.h"
#include "state/AppSettings.h"
#include "state/PreferencesStore.h"
#include "state/Product.h"
#include "support/TempFolder.h"

#include <cstdlib>
#include <sstream>

#include <unistd.h>

#include <fmt/format.h>

namespace querlin::bench {

namespace {

namespace fs = std::filesystem;

std::string procFile(const std::string& process, std::string_view name) {
    return contentOf(fmt::format("/proc/{}/{}", process, name));
}

/// Shared pages count in parts.
std::int64_t memoryOf(const std::string& process) {
    constexpr std::string_view head = "\nPss:";
    const auto text = procFile(process, "smaps_rollup");
    const auto at = text.find(head);
    if (at == std::string::npos) return 0;
    return std::strtoll(text.c_str() + at + head.size(), nullptr, 10) * 1024;
}

/// User and system, by the kernel's ticks.
double computingSecondsOf(const std::string& process) {
    const auto text = procFile(process, "stat");
    const auto behindName = text.rfind(')');
    if (behindName == std::string::npos) return 0;
    std::istringstream fields(text.substr(behindName + 1));
    constexpr int fieldsInBetween = 11;
    std::string skipped;
    for (int i = 0; i < fieldsInBetween; ++i) fields >> skipped;
    double user = 0;
    double system = 0;
    fields >> user >> system;
    return (user + system) / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

} // namespace

void prepareSettings() {
    RunLoop loop;
    SystemClock clock;
    ThreadPool pool(1);
    PreferencesStore store(ApplicationPaths::fromEnvironment().preferencesFile(Product::applicationId),
                           {loop, clock, pool});
    AppSettings settings(store);
    settings.hasCompletedOnboarding.set(true);
    settings.updateLawsAutomatically.set(false);
    settings.checkForUpdatesAtLaunch.set(false);
}

bool prepareLaws() {
    if (!fs::exists(QUERLIN_REAL_LAWS)) return false;
    const auto folder = ApplicationPaths::fromEnvironment().laws();
    shell(fmt::format("'{}' make '{}/LegalManifest.json' '{}' '{}'", QUERLIN_LAWCORPUS, QUERLIN_RESOURCES,
                      folder.string(), QUERLIN_REAL_LAWS));
    return fs::exists(folder / "LegalCorpus.deflate");
}

RunningProgram::RunningProgram() {
    std::error_code ignored;
    fs::remove(paths_.log, ignored);
    program_ = std::make_unique<Program>(std::vector<std::string>{QUERLIN_PROGRAM});
}

bool RunningProgram::comesUp(Tray& tray) const {
    constexpr auto longest = std::chrono::seconds(20);
    const auto listens = [&] { return contentOf(paths_.log).contains("Die Diktattaste wird gehört"); };
    return tray.awaitSymbol(longest) && eventually(listens, longest);
}

std::vector<std::string> RunningProgram::processes() const {
    const auto self = std::to_string(program_->id());
    std::vector<std::string> found{self};
    for (const auto& thread : fs::directory_iterator(fmt::format("/proc/{}/task", self))) {
        std::istringstream children(contentOf(thread.path() / "children"));
        for (std::string child; children >> child;) found.push_back(child);
    }
    return found;
}

std::int64_t RunningProgram::memoryInBytes() const { return memoryOf(std::to_string(program_->id())); }

std::int64_t RunningProgram::memoryWithHelpersInBytes() const {
    std::int64_t sum = 0;
    for (const auto& process : processes()) sum += memoryOf(process);
    return sum;
}

double RunningProgram::computingSeconds() const {
    double sum = 0;
    for (const auto& process : processes()) sum += computingSecondsOf(process);
    return sum;
}

} // namespace querlin::bench
