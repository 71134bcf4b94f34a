// The program's entry and its one composition root.

#include "dictation/CrashRecovery.h"
#include "foundation/Clock.h"
#include "foundation/RunLoop.h"
#include "foundation/ThreadPool.h"
#include "legal/LegalCorpus.h"
#include "platform/atspi/AtspiAccessibility.h"
#include "platform/av/SwrConverter.h"
#include "platform/pocketsphinx/ClassicService.h"
#include "platform/pulse/PulseAudio.h"
#include "platform/sherpa/StreamingService.h"
#include "platform/x11/X11Keyboard.h"
#include "platform/x11/X11Workspace.h"
#include "speech/AudioDevices.h"
#include "speech/VocabularyProvider.h"
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

/// What the program hears with, as far as it is there.
std::string describeHearing(const ApplicationPaths& paths) {
    RunLoop queue;
    PulseAudio hardware(queue);
    const auto microphone = AudioDevices(hardware).systemDefaultInput();
    StreamingService streaming({.models = paths.models(), .libraries = {StreamingService::libraryOfBuild()}});
    ClassicService classic({.model = std::filesystem::path(QUERLIN_RESOURCES) / "StarterModel",
                            .makeConverter = makeSwrConverter});
    const auto starter = classic.recognizer("de-DE");

    std::string recogniser = "keine – das Startmodell fehlt oder ist beschädigt";
    if (streaming.isHere()) {
        recogniser = "das eigene Modell";
    } else if (starter && starter->isAvailable()) {
        recogniser = "das Startmodell, nur zur Vorführung: Menschen versteht es kaum";
    }
    auto text = fmt::format("  Mikrofon:              {}\n  Spracherkennung:       {}\n",
                            microphone ? microphone->name : "keines gefunden", recogniser);
    for (const auto& report : streaming.models()) {
        text += fmt::format("    Modell „{}“: {}\n", report.name,
                            report.model ? "brauchbar" : report.model.error());
    }
    return text;
}

/// What the program reaches of the desktop.
std::string describeDesktop() {
    RunLoop queue;
    X11Workspace workspace;
    AtspiAccessibility accessibility([&workspace] {
        const auto front = workspace.frontmostApplication();
        return front ? std::optional(front->processIdentifier) : std::nullopt;
    });
    return fmt::format("  Diktiertaste:          {}\n  Eingabefelder:         {}\n",
                       X11Keyboard(queue).isAvailable() ? "kann gehört werden"
                                                        : "kein X-Server mit XInput 2 und XTest",
                       accessibility.isAvailable() ? "können gelesen werden" : "kein Bedienungshilfen-Bus");
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

    ThreadPool pool(1);
    const VocabularyProvider vocabulary(QUERLIN_RESOURCES, pool);

    fmt::print("{} ist startklar. Hauptschleife und Fenster kommen mit dem nächsten Schritt.\n"
               "  Diktate bisher:        {}\n"
               "  Nach Absturz gerettet: {}{}\n"
               "  Gesetze:               {} mit {} Paragraphen\n"
               "  Fachwortschatz:        {} Begriffe\n"
               "{}"
               "{}"
               "  Protokoll:             {}\n",
               Product::name, statistics.dictationCount.get(), recovered,
               recovered > 0 ? " (in " + rescueFolder.path().string() + ")" : "", loadedLaws.size(), sections,
               vocabulary.totalTerms(), describeHearing(paths), describeDesktop(), log.path().string());
    DiagnosticsLog::note("app", "=== Ende ===");
    return EXIT_SUCCESS;
}

} // namespace
} // namespace querlin

int main(int, char** arguments) { return querlin::runProgram(arguments[0]); }
