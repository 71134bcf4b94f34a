#pragma once

#include "foundation/Time.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace querlin {

/// A date broken down by the Gregorian calendar in the local time zone.
struct LocalTime {
    int year = 0;
    int month = 0; ///< 1 to 12
    int day = 0;   ///< 1 to 31
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
    int weekday = 0; ///< 0 is Sunday
};

/// A date in the time zone of TZ, or of the machine; summer time included.
LocalTime localTime(Date date);

/// "14.03.2026"
std::string germanDate(Date date);
/// "09:30"
std::string germanTime(Date date);
/// "Samstag"
std::string germanWeekday(Date date);
/// "1.234.567"
std::string germanNumber(std::int64_t number);

/// For file names, "2026-03-14 09-30-00".
std::string localFileStamp(Date date);
/// For log lines, "09:30:00.000".
std::string localLogStamp(Date date);

/// Parses "yyyyMMddHHmmss" in Berlin time, whatever the local zone is: "20231231214227". Unset for anything
/// but fourteen digits and for impossible dates. A time that occurs twice when summer time ends is the later
/// one.
std::optional<Date> berlinStamp(std::string_view text);

/// The same local time of day so many calendar days earlier, also across a change to summer time; unset if
/// `days` is negative or the result is out of range.
std::optional<Date> daysBefore(Date date, std::int64_t days);

} // namespace querlin
