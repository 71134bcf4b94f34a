#pragma once

#include <chrono>

namespace querlin {

/// A point in calendar time, in UTC; what is stored and shown.
using Date = std::chrono::system_clock::time_point;
/// A point in monotonic time, for measuring.
using Instant = std::chrono::steady_clock::time_point;
/// A span of time.
using Duration = std::chrono::nanoseconds;

/// The number of seconds in a span, for log lines and settings.
constexpr double inSeconds(Duration span) { return std::chrono::duration<double>(span).count(); }

/// A span of so many seconds: `seconds(0.25)`.
constexpr Duration seconds(double count) {
    return std::chrono::duration_cast<Duration>(std::chrono::duration<double>(count));
}

} // namespace querlin
