#include "report/Report.h"

#include <cstdio>

#include <fmt/format.h>

namespace querlin::bench {

namespace {

void print(std::string_view line) {
    fmt::print("{}\n", line);
    std::fflush(stdout); // The cases take long, and somebody may be reading along.
}

} // namespace

bool Bar::isReachedBy(double measured) const {
    switch (kind) {
    case Kind::information:
        return true;
    case Kind::atLeast:
        return measured >= ratio;
    case Kind::atMost:
        return measured <= ratio;
    }
    return false;
}

void Report::section(std::string_view title) {
    print(fmt::format("\n{:<50} {:>12} {:>12} {:>8}  {:<9} {}", title, "ours", "peer", "ratio", "wanted",
                      "reached"));
}

void Report::row(std::string_view name, std::string_view ours, std::string_view peer, double ratio, Bar bar) {
    const bool hasBar = bar.kind != Bar::Kind::information;
    const auto wanted =
        hasBar ? fmt::format("{} {:.4g}x", bar.kind == Bar::Kind::atLeast ? ">=" : "<=", bar.ratio) : "-";
    print(fmt::format("  {:<48} {:>12} {:>12} {:>7.2f}x  {:<9} {}", name, ours, peer, ratio, wanted,
                      !hasBar                  ? "-"
                      : bar.isReachedBy(ratio) ? "yes"
                                               : "NO"));
}

void Report::times(std::string_view name, double ours, double peer, Bar bar) {
    const auto ratio = bar.kind == Bar::Kind::atMost ? ours / peer : peer / ours;
    row(name, inWords(ours), inWords(peer), ratio, bar);
}

void Report::verdict(std::string_view name, bool isReached) {
    print(fmt::format("  {:<93} {}", name, isReached ? "yes" : "NO"));
}

void Report::note(std::string_view text) { print(fmt::format("  {}", text)); }

void Report::disagreement(std::string_view text) {
    constexpr std::size_t shown = 10;
    if (++disagreements_ <= shown) print(fmt::format("  THEY DISAGREE: {}", text));
    if (disagreements_ == shown) print("  More of that is not shown.");
}

std::string inWords(double seconds) {
    constexpr double milli = 1e-3;
    return seconds >= milli ? fmt::format("{:.2f} ms", seconds * 1e3)
                            : fmt::format("{:.1f} µs", seconds * 1e6);
}

} // namespace querlin::bench
