// What the running program costs. To be run in a desktop of its own:
//   tools/virtual-desktop --with compositor -- program_bench [launching|resting|showing]

#include "Cases.h"
#include "Running.h"

#include <cstdlib>

#include <fmt/format.h>

namespace querlin::bench {
namespace {

int run(std::string_view part) {
    Figures figures;
    prepareSettings();
    // Nobody is there: no measurement asks the portal.
    ::setenv("https_proxy", "http://127.0.0.1:9", 1); // NOLINT(concurrency-mt-unsafe)
    const auto isWanted = [part](std::string_view name) { return part.empty() || part == name; };
    if (isWanted("launching")) runLaunching(figures);
    if (isWanted("showing")) runShowing(figures);
    if (isWanted("resting")) runResting(figures);
    return figures.areAllReached() ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace
} // namespace querlin::bench

int main(int count, char** arguments) {
    if (!querlin::isInVirtualDesktop()) {
        fmt::print(stderr, "tools/virtual-desktop --with compositor -- build/release/bench/program_bench\n");
        return EXIT_FAILURE;
    }
    return querlin::bench::run(count > 1 ? arguments[1] : "");
}
