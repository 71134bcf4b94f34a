// One dictation in real time in a process of its own, to be killed at any point. It tells on standard
// output how far it has come: "r" recording, "d" delivered to the target, "e" at its end.
//
//     crash_child ⟨folder⟩ delivered|rescued

#include "foundation/RunLoop.h"
#include "foundation/ThreadPool.h"
#include "foundation/Waiting.h"
#include "support/DictationWorld.h"

#include <cstdlib>

#include <unistd.h>

namespace querlin {
namespace {

void tell(char how) {
    if (::write(STDOUT_FILENO, &how, 1) != 1) std::abort();
}

class TellingInserter final : public TextInserter {
public:
    TellingInserter(MainQueue& queue, Outcome outcome) : queue_(queue), outcome_(outcome) {}
    Task<InsertResult> insert(std::string) override {
        co_await sleepFor(queue_, std::chrono::milliseconds(10));
        if (outcome_ == Outcome::inserted) tell('d');
        co_return outcome_;
    }
    void placeInPasteboard(std::string_view) override {}

private:
    MainQueue& queue_;
    Outcome outcome_;
};

int runDictation(const std::filesystem::path& folder, TextInserter::Outcome outcome) {
    RunLoop loop;
    SystemClock clock;
    ThreadPool pool(1);
    const Runtime runtime{loop, clock, pool};
    PreferencesStore store(folder / "Einstellungen.json", clock);
    AppSettings settings(store);
    UsageStatistics statistics(store, clock);
    DictationHistory history(folder / "Verlauf", clock);
    FakeServices services(loop);
    FakeRecorder recorder(folder / "Aufnahme", clock);
    TellingInserter inserter(loop, outcome);
    FakeStages stages;
    FakeEnhancer enhancer(stages, runtime);
    FakeCoordinator coordinator(stages, runtime);
    FakeHotkey hotkey;
    FakePermissions permissions;
    FakeSignals signals;
    FakeWindows windows;
    FakeWatcher watcher;
    Notifier notifier(nullptr);
    RescueFolder rescueFolder(folder / "Gerettete Diktate", clock);
    DictationRescue rescue(rescueFolder, inserter, notifier);
    settings.historyKeepAudio.set(true);
    settings.cleanupMode.set(CleanupMode::local);
    services.script.delay = std::chrono::milliseconds(8);
    coordinator.delay = std::chrono::milliseconds(8);
    recorder.durationFactor = 20;

    DictationController controller(runtime, {.settings = settings,
                                             .statistics = statistics,
                                             .history = history,
                                             .rescue = rescue,
                                             .notifier = notifier,
                                             .windows = windows,
                                             .sounds = services,
                                             .hotkey = hotkey,
                                             .permissions = permissions,
                                             .contextDetector = services,
                                             .inserter = inserter,
                                             .correctionWatcher = watcher,
                                             .systemSignals = signals,
                                             .recorder = recorder,
                                             .audioDevices = services,
                                             .transcribers = services,
                                             .vocabulary = services,
                                             .textStages = stages,
                                             .ruleBasedEnhancer = enhancer,
                                             .enhancement = coordinator});
    controller.beginDictation();
    tell('r');
    int partials = 0;
    std::optional<RepeatingTimer> speech;
    speech.emplace(loop, std::chrono::milliseconds(2),
                   [&] { services.transcriber->partial("Teil " + std::to_string(++partials)); });
    const auto release = loop.after(std::chrono::milliseconds(25), [&] {
        speech.reset();
        controller.endDictation();
    });
    const auto rest = controller.phase().subscribe(
        [&](const DictationPhase& phase) {
            if (phase.is(DictationPhase::Kind::idle)) loop.quit();
        },
        FirstValue::Skip);
    loop.run();
    tell('e');
    ::pause(); // The killer comes in any case.
    return EXIT_SUCCESS;
}

} // namespace
} // namespace querlin

int main(int count, char** arguments) {
    using Outcome = querlin::TextInserter::Outcome;
    if (count != 3) return EXIT_FAILURE;
    return querlin::runDictation(arguments[1], std::string_view(arguments[2]) == "delivered"
                                                   ? Outcome::inserted
                                                   : Outcome::notInserted);
}
