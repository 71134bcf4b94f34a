#include "foundation/GermanFormat.h"

#include <array>
#include <charconv>
#include <ctime>

#include <fmt/format.h>
#include <unicode/gregocal.h>
#include <unicode/timezone.h>

namespace querlin {

namespace {

constexpr std::array<std::string_view, 7> weekdays = {"Sonntag",    "Montag",  "Dienstag", "Mittwoch",
                                                      "Donnerstag", "Freitag", "Samstag"};

std::tm brokenDown(std::chrono::sys_seconds moment) {
    const std::time_t seconds = moment.time_since_epoch().count();
    std::tm parts{};
    (void)::localtime_r(&seconds, &parts);
    return parts;
}

} // namespace

LocalTime localTime(Date date) {
    const auto whole = std::chrono::floor<std::chrono::seconds>(date);
    const auto parts = brokenDown(whole);
    // Rounded before the subtraction: the second of the earliest date doesn't fit into nanoseconds.
    const auto fraction = std::chrono::floor<std::chrono::milliseconds>(date) - whole;
    return {.year = parts.tm_year + 1900,
            .month = parts.tm_mon + 1,
            .day = parts.tm_mday,
            .hour = parts.tm_hour,
            .minute = parts.tm_min,
            .second = parts.tm_sec,
            .millisecond = static_cast<int>(fraction.count()),
            .weekday = parts.tm_wday};
}

std::string germanDate(Date date) {
    const auto t = localTime(date);
    return fmt::format("{:02}.{:02}.{:04}", t.day, t.month, t.year);
}

std::string germanTime(Date date) {
    const auto t = localTime(date);
    return fmt::format("{:02}:{:02}", t.hour, t.minute);
}

std::string germanWeekday(Date date) {
    return std::string(weekdays.at(static_cast<std::size_t>(localTime(date).weekday)));
}

std::string germanNumber(std::int64_t number) {
    const auto digits = fmt::format("{}", number);
    std::string grouped;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        const bool beginsGroup = i > 0 && digits[i - 1] != '-' && (digits.size() - i) % 3 == 0;
        if (beginsGroup) grouped += '.';
        grouped += digits[i];
    }
    return grouped;
}

std::string localFileStamp(Date date) {
    const auto t = localTime(date);
    return fmt::format("{:04}-{:02}-{:02} {:02}-{:02}-{:02}", t.year, t.month, t.day, t.hour, t.minute,
                       t.second);
}

std::string localLogStamp(Date date) {
    const auto t = localTime(date);
    return fmt::format("{:02}:{:02}:{:02}.{:03}", t.hour, t.minute, t.second, t.millisecond);
}

std::optional<Date> berlinStamp(std::string_view text) {
    constexpr std::size_t length = 14;
    if (text.size() != length || text.find_first_not_of("0123456789") != std::string_view::npos)
        return std::nullopt;
    const auto number = [text](std::size_t at, std::size_t digits) {
        std::int32_t value = 0;
        std::from_chars(text.data() + at, text.data() + at + digits, value);
        return value;
    };
    UErrorCode status = U_ZERO_ERROR;
    icu::GregorianCalendar calendar(icu::TimeZone::createTimeZone("Europe/Berlin"), icu::Locale::getGermany(),
                                    status);
    if (U_FAILURE(status) != 0) return std::nullopt;
    calendar.clear();
    calendar.setLenient(0);
    calendar.set(number(0, 4), number(4, 2) - 1, number(6, 2), number(8, 2), number(10, 2), number(12, 2));
    const auto milliseconds = calendar.getTime(status); // Fails for impossible dates.
    if (U_FAILURE(status) != 0) return std::nullopt;
    return Date(std::chrono::milliseconds(static_cast<std::int64_t>(milliseconds)));
}

std::optional<Date> daysBefore(Date date, std::int64_t days) {
    constexpr std::int64_t furthest = 91'250; // Days; within the range of a date from any present day.
    if (days < 0 || days > furthest) return std::nullopt;
    const auto whole = std::chrono::floor<std::chrono::seconds>(date);
    auto parts = brokenDown(whole);
    parts.tm_mday -= static_cast<int>(days);
    parts.tm_isdst = -1; // Let the library decide whether summer time applies on that day.
    const auto earlier = std::chrono::sys_seconds(std::chrono::seconds(::mktime(&parts)));
    if (earlier < std::chrono::ceil<std::chrono::seconds>(Date::min())) return std::nullopt;
    return Date(earlier) + (date - whole);
}

} // namespace querlin
