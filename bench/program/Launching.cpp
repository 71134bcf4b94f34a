#include "Cases.h"
#include "Running.h"
#include "Tray.h"

namespace querlin::bench {

namespace {

constexpr std::size_t launches = 9;
constexpr auto longest = std::chrono::seconds(20);

/// Between both programs' launches nothing is left of the former one.
double launch(Tray& tray, const std::string& path, bool& isPainted) {
    tray.awaitEmptiness(longest);
    const Stopwatch stopwatch;
    const Program program({path});
    isPainted = tray.awaitSymbol(longest) && isPainted;
    return stopwatch.seconds();
}

} // namespace

void runLaunching(Figures& figures) {
    figures.section("from the start to the symbol in the tray | least Qt program");
    Tray tray;
    bool isPainted = true;
    const auto ours = [&] { return launch(tray, QUERLIN_PROGRAM, isPainted); };
    const auto peer = [&] { return launch(tray, QUERLIN_BENCH_PEER, isPainted); };
    ours(); // Both are read from the disk once.
    peer();
    if (!isPainted) {
        figures.failed("no symbol appears");
        return;
    }
    const auto [oursMedian, peerMedian] = interleavedMedians(launches, ours, peer);
    if (!isPainted) {
        figures.failed("not every symbol appeared");
        return;
    }
    constexpr double wanted = 1.5;
    figures.times("median of 9", oursMedian, peerMedian, Bar::atMost(wanted));
}

} // namespace querlin::bench
