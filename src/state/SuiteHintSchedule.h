#pragma once

#include "foundation/Time.h"

#include <cstdint>
#include <optional>

/// When the hint at the suite may show itself: first some time after installation, then at
/// intervals that grow once it has been put off several times.
namespace querlin::SuiteHintSchedule {

inline constexpr Duration initialDelay = std::chrono::days(14);
inline constexpr Duration interval = std::chrono::days(14);
inline constexpr Duration backoffInterval = std::chrono::days(60);
inline constexpr std::int64_t dismissalsBeforeBackoff = 3;

Duration currentInterval(std::int64_t dismissals, bool linkOpened);
bool isDue(Date now, std::optional<Date> installedAt, std::optional<Date> lastShown, std::int64_t dismissals,
           bool linkOpened);

} // namespace querlin::SuiteHintSchedule
