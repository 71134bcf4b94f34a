#pragma once

#include <chrono>

namespace querlin {

/// A moment on the calendar, in UTC; what is stored and shown.
using Date = std::chrono::system_clock::time_point;
/// A moment for measuring spans; never set back.
using Instant = std::chrono::steady_clock::time_point;
/// A span of time.
using Duration = std::chrono::nanoseconds;

/// A span in seconds, as log lines and settings speak of it.
constexpr double inSeconds(Duration span) { return std::chrono::duration<double>(span).count(); }

/// The span of a number of seconds: `seconds(0.25)`.
constexpr Duration seconds(double count) {
    return std::chrono::duration_cast<Duration>(std::chrono::duration<double>(count));
}

} // namespace querlin
