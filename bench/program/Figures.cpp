#include "Figures.h"

#include <fmt/format.h>

namespace querlin::bench {

void Figures::times(std::string_view name, double ours, double peer, Bar bar) {
    const auto ratio = bar.kind == Bar::Kind::atMost ? ours / peer : peer / ours;
    if (!bar.isReachedBy(ratio)) ++misses_;
    report_.times(name, ours, peer, bar);
}

void Figures::limit(std::string_view name, double ours, double limit, std::string_view unit) {
    const auto bar = Bar::atMost(1);
    const auto ratio = ours / limit;
    if (!bar.isReachedBy(ratio)) ++misses_;
    report_.row(name, fmt::format("{:.2f} {}", ours, unit), fmt::format("{:.4g} {}", limit, unit), ratio,
                bar);
}

void Figures::failed(std::string_view text) {
    ++misses_;
    report_.verdict(text, false);
}

} // namespace querlin::bench
