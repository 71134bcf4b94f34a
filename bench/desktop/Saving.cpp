#include "Cases.h"

#include "report/Measuring.h"

#include "platform/x11/X11Clipboard.h"
#include "support/Desktop.h"

#include <cstdlib>

#include <fmt/format.h>

namespace querlin::bench {

namespace {

constexpr double limit = 0.050;

} // namespace

void runSaving(Report& report) {
    RunLoop loop;
    X11Clipboard clipboard(loop);
    const Program owner({QUERLIN_BENCH_PEER, "own"});
    ClipboardSnapshot snapshot;
    const auto count = [&] { return snapshot.isEmpty() ? 0U : snapshot.items.front().size(); };
    const bool isThere = serveUntil(
        loop,
        [&] {
            snapshot = await(loop, clipboard.capture());
            return count() >= 22;
        },
        std::chrono::seconds(5));
    if (!isThere) report.disagreement(fmt::format("the owner offers {} forms", count()));

    std::vector<double> saving;
    for (int i = 0; i < 50; ++i)
        saving.push_back(secondsOf([&] { return await(loop, clipboard.capture()); }));
    std::vector<double> restoring;
    for (int i = 0; i < 50; ++i) {
        restoring.push_back(secondsOf([&] {
            clipboard.write(snapshot);
            return 0;
        }));
    }
    const auto ours = median(saving) + median(restoring);
    // A second owner, for ours is the owner now.
    const Program again({QUERLIN_BENCH_PEER, "own"});
    serve(loop, std::chrono::milliseconds(500));
    const double theirs = std::atof(shell(std::string(QUERLIN_BENCH_PEER) + " save").c_str());
    report.section(fmt::format("{} forms of a clipboard saved and given back", count()));
    report.times("against the limit", ours, limit, Bar::atLeast(1));
    report.times("against QClipboard, saving alone", median(saving), theirs, {});
}

} // namespace querlin::bench
