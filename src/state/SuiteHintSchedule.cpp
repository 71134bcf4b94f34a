#include "state/SuiteHintSchedule.h"

namespace querlin::SuiteHintSchedule {

Duration currentInterval(std::int64_t dismissals, bool linkOpened) {
    return linkOpened || dismissals < dismissalsBeforeBackoff ? interval : backoffInterval;
}

bool isDue(Date now, std::optional<Date> installedAt, std::optional<Date> lastShown, std::int64_t dismissals,
           bool linkOpened) {
    if (!installedAt) return false;
    if (!lastShown) return now - *installedAt >= initialDelay;
    return now - *lastShown >= currentInterval(dismissals, linkOpened);
}

} // namespace querlin::SuiteHintSchedule
