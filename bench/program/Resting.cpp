#include "Cases.h"
#include "Running.h"
#include "Tray.h"

#include <thread>

#include <fmt/format.h>

namespace querlin::bench {

namespace {

constexpr auto untilItRests = std::chrono::seconds(12); ///< its last delayed work begins after 8 s
constexpr auto watched = std::chrono::seconds(60);
constexpr double mostMegabytes = 150;
/// "0.0 %" with one decimal.
constexpr double mostPercent = 0.05;

double megabytes(std::int64_t bytes) { return static_cast<double>(bytes) / 1e6; }

} // namespace

void runResting(Figures& figures) {
    const bool hasLaws = prepareLaws();
    Tray tray; // Without one the program would show a window of its own.
    const RunningProgram program;
    figures.section("while nobody dictates | the limit");
    if (!program.comesUp(tray)) {
        figures.failed("the program doesn't come up");
        return;
    }
    std::this_thread::sleep_for(untilItRests);
    const auto before = program.computingSeconds();
    std::this_thread::sleep_for(watched);
    const auto spent = program.computingSeconds() - before;
    figures.limit("computing time in 60 s, all processes", 100 * spent / inSeconds(watched), mostPercent,
                  "%");
    figures.limit("memory (PSS), the program", megabytes(program.memoryInBytes()), mostMegabytes, "MB");
    figures.note(fmt::format(
        "with its recogniser {:.0f} MB; {}", megabytes(program.memoryWithHelpersInBytes()),
        hasLaws ? "the laws beside the project are loaded" : "there are no laws beside the project"));
}

} // namespace querlin::bench
