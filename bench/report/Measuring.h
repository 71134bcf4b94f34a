#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <vector>

namespace querlin::bench {

class Stopwatch {
public:
    double seconds() const {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - started_).count();
    }

private:
    std::chrono::steady_clock::time_point started_ = std::chrono::steady_clock::now();
};

/// The seconds that a call takes. Its result is destroyed after the measurement.
template<class Call>
double secondsOf(Call call) {
    const Stopwatch stopwatch;
    [[maybe_unused]] const auto result = call();
    return stopwatch.seconds();
}

/// The value below which such a part of the values lies, by the nearest rank; 0.5 is the median.
inline double percentile(std::vector<double> values, double part) {
    if (values.empty()) return 0;
    const auto last = values.size() - 1;
    const auto rank = std::min(last, static_cast<std::size_t>(part * static_cast<double>(values.size())));
    std::ranges::nth_element(values, values.begin() + static_cast<std::ptrdiff_t>(rank));
    return values[rank];
}
inline double median(std::vector<double> values) { return percentile(std::move(values), 0.5); }

/// Calls all of them in turn, so often, and gives the median of each. They measure the seconds themselves.
template<class... Calls>
std::array<double, sizeof...(Calls)> interleavedMedians(std::size_t repetitions, Calls... calls) {
    std::array<std::vector<double>, sizeof...(Calls)> measured;
    for (std::size_t i = 0; i < repetitions; ++i) {
        std::size_t column = 0;
        (measured[column++].push_back(calls()), ...);
    }
    std::array<double, sizeof...(Calls)> medians{};
    std::ranges::transform(measured, medians.begin(), [](auto& values) { return median(std::move(values)); });
    return medians;
}

} // namespace querlin::bench
