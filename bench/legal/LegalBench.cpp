// The law texts beside named peers: loading, searching, and reading the portal's archives. `--synthetic`
// leaves the real laws alone, `--quick` does everything once, to see whether ours and the peers agree.

#include "Cases.h"
#include "Child.h"
#include "Corpus.h"
#include "report/Report.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string_view>
#include <vector>

#include <fmt/format.h>

namespace {

using namespace querlin::bench;

constexpr std::size_t syntheticSections = 9'800;
constexpr std::size_t quickSections = 400;

void runAll(const Setting& setting) {
    fmt::print("\n=== {}\n", setting.corpus.description());
    std::fflush(stdout);
    runLoadCases(setting);
    runSearchCases(setting);
    runArchiveCases(setting);
}

} // namespace

int main(int count, char** values) {
    const std::vector<std::string_view> arguments(values + 1, values + count);
    if (const auto work = arguments.size() == 2 ? childWork(arguments[0]) : std::nullopt) {
        beChild(*work, arguments[1]);
        return EXIT_SUCCESS;
    }
    const auto has = [&](std::string_view option) { return std::ranges::count(arguments, option) > 0; };
    const bool isQuick = has("--quick");
    Report report;
    const auto real = has("--synthetic") ? std::nullopt : realCorpus(QUERLIN_REAL_LAWS);
    if (!real) fmt::print("No real laws are used.\n");
    if (isQuick) fmt::print("Everything is done once and with few words: the times mean nothing.\n");
    if (real) runAll({*real, report, isQuick});
    // Real ones or not: the sizes that matter are those of all laws together.
    runAll({syntheticCorpus(isQuick ? quickSections : syntheticSections), report, isQuick});
    if (report.hasDisagreement()) return EXIT_FAILURE;
    fmt::print("\nOurs and the peers agree in everything that they found.\n");
    return EXIT_SUCCESS;
}
