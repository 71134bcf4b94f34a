#include "Cases.h"

#include "report/Measuring.h"

#include "support/Desktop.h"
#include "support/TempFolder.h"

#include <fmt/format.h>

namespace querlin::bench {

namespace {

constexpr int looks = 300;
constexpr double limit = 0.010;
using FieldKind = DictationContext::FieldKind;

void look(Report& report, std::string_view name, std::vector<std::string> command, FieldKind field) {
    if (!isInstalled(command.front())) {
        report.note(fmt::format("{} isn't installed", command.front()));
        return;
    }
    RunLoop loop;
    Eyes eyes(loop);
    const Program program(std::move(command));
    if (!serveUntil(loop, [&] { return eyes.detector.capture().field == field; }, std::chrono::seconds(40))) {
        report.disagreement(fmt::format("{}: {}", name, eyes.detector.capture().summary()));
        return;
    }
    serve(loop, std::chrono::seconds(3)); // until it has come to rest
    std::vector<double> times;
    int unknown = 0;
    for (int i = 0; i < looks; ++i) {
        const Stopwatch stopwatch;
        if (eyes.detector.capture().field != field) ++unknown;
        times.push_back(stopwatch.seconds());
        serve(loop, std::chrono::milliseconds(20)); // nobody looks more often, and programs are spared
    }
    if (unknown > 0) report.disagreement(fmt::format("{}: {} looks have found no field", name, unknown));
    report.times(fmt::format("{}, median", name), median(times), limit, {});
    report.times(fmt::format("{}, one of a hundred", name), percentile(times, 0.99), limit, Bar::atLeast(1));
}

} // namespace

void runLooking(Report& report) {
    report.section("a look at the field, against the limit");
    look(report, "GTK 3", {"mousepad", "--disable-server"}, FieldKind::multiLine);
    look(report, "Qt 6", {QUERLIN_BENCH_PEER, "field"}, FieldKind::multiLine);
    const TempFolder folder;
    look(report, "Firefox", firefoxWith(folder.path(), "<textarea autofocus rows=20></textarea>"),
         FieldKind::multiLine);
}

} // namespace querlin::bench
