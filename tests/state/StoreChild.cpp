// Changes a setting and records a dictation again and again, to be killed at any point. It reports on standard
// output what must be on disk by now: "h⟨number⟩;" an entry of the history, "s⟨number⟩;" a value of the setting.
//
//     store_child ⟨folder⟩

#include "foundation/RepeatingTimer.h"
#include "foundation/RunLoop.h"
#include "foundation/SerialQueue.h"
#include "state/AppSettings.h"
#include "state/DictationHistory.h"

#include <cstdlib>
#include <list>

#include <unistd.h>

#include <fmt/format.h>

namespace querlin {
namespace {

void report(char what, int number) {
    const auto line = fmt::format("{}{};", what, number);
    if (::write(STDOUT_FILENO, line.data(), line.size()) != static_cast<ssize_t>(line.size())) std::abort();
}

void changeForEver(const std::filesystem::path& folder) {
    RunLoop loop;
    SystemClock clock;
    SerialQueue storage;
    const Runtime runtime{loop, clock, storage};
    PreferencesStore store(folder / "Einstellungen.json", runtime);
    AppSettings settings(store);
    DictationHistory history(folder, runtime);
    std::list<Registration> reports;
    int number = 0;
    const auto later = [&](Duration delay, char what) { reports.push_back(loop.after(delay, [what, number] { report(what, number); })); };
    const RepeatingTimer work(loop, std::chrono::milliseconds(7), [&] {
        ++number;
        settings.contextualLimit.set(number);
        history.record(fmt::format("Diktat {}", number), "Schreiber", "Roh", std::nullopt);
        later(std::chrono::milliseconds(200), 'h');
        later(std::chrono::seconds(1), 's');
    });
    loop.run();
}

} // namespace
} // namespace querlin

int main(int count, char** arguments) {
    if (count == 2) querlin::changeForEver(arguments[1]);
    return EXIT_FAILURE;
}
