// The cost of working with the desktop. To be run in a desktop of its own: tools/virtual-desktop --
// desktop_bench

#include "Cases.h"

#include "support/Desktop.h"

#include <cstdlib>

#include <fmt/format.h>

int main() {
    if (!querlin::isInVirtualDesktop()) {
        fmt::print(stderr, "tools/virtual-desktop -- build/release/bench/desktop_bench\n");
        return EXIT_FAILURE;
    }
    querlin::bench::Report report;
    querlin::bench::runPressing(report);
    querlin::bench::runSaving(report);
    querlin::bench::runLooking(report);
    querlin::bench::runDelivery(report);
    return report.hasDisagreement() ? EXIT_FAILURE : EXIT_SUCCESS;
}
