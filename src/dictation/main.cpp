// The program's entry and its one composition root.

#include "dictation/CrashRecovery.h"
#include "foundation/Clock.h"
#include "legal/LegalCorpus.h"
#include "state/AppSettings.h"
#include "state/ApplicationPaths.h"
#include "state/DiagnosticsLog.h"
#include "state/LogFile.h"
#include "state/Migration.h"
#include "state/Product.h"
#include "state/UsageStatistics.h"

#include <cstdlib>

#include <sys/utsname.h>
#include <unistd.h>

#include <fmt/format.h>

namespace querlin {
namespace {

std::string systemName() {
    utsname system{};
    return ::uname(&system) == 0 ? fmt::format("{} {}", system.sysname, system.release) : "unbekannt";
}

int runProgram(std::string_view executable) {
    const auto paths = ApplicationPaths::fromEnvironment();
    const SystemClock clock;
    LogFile log(paths.log, clock);
    const DiagnosticsLog::Installation installation(log);
    DiagnosticsLog::note("app", fmt::format("=== Start === {}", executable));
    DiagnosticsLog::note("app", fmt::format("PID {}, {}", ::getpid(), systemName()));

    PreferencesStore preferences(paths.preferencesFile(Product::bundleIdentifier), clock);
    Migration::runIfNeeded(preferences, Product::legacyDomain, paths.preferencesFile(Product::legacyDomain));
    AppSettings settings(preferences);
    settings.recordLaunch(clock.now());
    const UsageStatistics statistics(preferences, clock);

    Notifier notifier(nullptr);
    RescueFolder rescueFolder(paths.rescuedDictations(), clock);
    const auto recovered =
        CrashRecovery::rescueLeftBehind(RecordingFolder(paths.recordings), rescueFolder, notifier);

    const LegalCorpusStore laws(paths.laws(), QUERLIN_RESOURCES);
    LegalCorpus corpus(laws, clock);
    std::size_t sections = 0;
    const auto loadedLaws = corpus.laws();
    for (const auto& law : loadedLaws) sections += law.sections.size();

    fmt::print("{} ist startklar. Mikrofon, Spracherkennung und Fenster kommen mit den nächsten Schritten.\n"
               "  Diktate bisher:        {}\n"
               "  Nach Absturz gerettet: {}{}\n"
               "  Gesetze:               {} mit {} Paragraphen\n"
               "  Protokoll:             {}\n",
               Product::name, statistics.dictationCount.get(), recovered,
               recovered > 0 ? " (in " + rescueFolder.path().string() + ")" : "", loadedLaws.size(), sections,
               log.path().string());
    DiagnosticsLog::note("app", "=== Ende ===");
    return EXIT_SUCCESS;
}

} // namespace
} // namespace querlin

int main(int, char** arguments) { return querlin::runProgram(arguments[0]); }
