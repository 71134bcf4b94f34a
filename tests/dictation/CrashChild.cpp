// One dictation in real time in a process of its own, to be killed at any point. It reports on standard
// output how far it has come: "r" recording, "d" delivered to the target, "e" at its end.
//
//     crash_child ⟨folder⟩ delivered|rescued

#include "foundation/RunLoop.h"
#include "foundation/ThreadPool.h"
#include "support/DictationWorld.h"

#include <cstdlib>

#include <unistd.h>

namespace querlin {
namespace {

void tell(char how) {
    if (::write(STDOUT_FILENO, &how, 1) != 1) std::abort();
}

/// Makes recordings seem longer than the killer wants to wait.
class FastClock final : public Clock {
public:
    Date now() const override { return std::chrono::system_clock::now(); }
    Instant instant() const override { return start_ + 20 * (std::chrono::steady_clock::now() - start_); }

private:
    const Instant start_ = std::chrono::steady_clock::now();
};

int runDictation(const std::filesystem::path& folder, TextInserter::Outcome outcome) {
    RunLoop loop;
    SystemClock clock;
    ThreadPool pool(1);
    const Runtime runtime{loop, clock, pool};
    const FastClock recordingClock;
    FakeSurroundings with(runtime, recordingClock, folder);
    with.settings.historyKeepAudio.set(true);
    with.settings.cleanupMode.set(CleanupMode::local);
    with.services.script.delay = std::chrono::milliseconds(8);
    with.model.delay = std::chrono::milliseconds(8);
    with.inserter.delay = std::chrono::milliseconds(10);
    with.inserter.next = outcome;
    with.inserter.onDelivered = [] { tell('d'); };

    DictationController controller(runtime, with.collaborators());
    controller.beginDictation();
    tell('r');
    int partials = 0;
    std::optional<RepeatingTimer> speech;
    speech.emplace(loop, std::chrono::milliseconds(2), [&] { with.services.transcriber->partial("Teil " + std::to_string(++partials)); });
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
    return querlin::runDictation(arguments[1], std::string_view(arguments[2]) == "delivered" ? Outcome::inserted : Outcome::notInserted);
}
