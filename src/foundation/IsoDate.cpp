#include "foundation/IsoDate.h"

#include <charconv>

#include <fmt/format.h>

namespace querlin {

namespace {

/// Parses exactly `digits` digits at the front of `text` and removes them.
std::optional<int> takeNumber(std::string_view& text, std::size_t digits) {
    if (text.size() < digits) return std::nullopt;
    int value = 0;
    for (const char c : text.substr(0, digits)) {
        if (c < '0' || c > '9') return std::nullopt;
        value = value * 10 + (c - '0');
    }
    text.remove_prefix(digits);
    return value;
}

bool take(std::string_view& text, char expected) {
    if (!text.starts_with(expected)) return false;
    text.remove_prefix(1);
    return true;
}

/// A fraction of one to nine digits after the point, in nanoseconds.
std::optional<std::chrono::nanoseconds> takeFraction(std::string_view& text) {
    const auto digits = text.find_first_not_of("0123456789");
    if (digits == std::string_view::npos || digits == 0 || digits > 9) return std::nullopt;
    auto value = takeNumber(text, digits);
    for (auto missing = digits; value && missing < 9; ++missing) *value *= 10;
    return value ? std::optional(std::chrono::nanoseconds(*value)) : std::nullopt;
}

} // namespace

std::string isoDate(Date date) {
    const auto day = std::chrono::floor<std::chrono::days>(date);
    const std::chrono::year_month_day civil(day);
    const std::chrono::hh_mm_ss time(std::chrono::duration_cast<std::chrono::nanoseconds>(date - day));
    auto text = fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}", static_cast<int>(civil.year()),
                            static_cast<unsigned>(civil.month()), static_cast<unsigned>(civil.day()),
                            time.hours().count(), time.minutes().count(), time.seconds().count());
    if (const auto fraction = time.subseconds().count(); fraction != 0) {
        auto digits = fmt::format(".{:09}", fraction);
        digits.erase(digits.find_last_not_of('0') + 1);
        text += digits;
    }
    return text + 'Z';
}

std::optional<Date> parseIsoDate(std::string_view text) {
    const auto year = takeNumber(text, 4);
    if (!year || !take(text, '-')) return std::nullopt;
    const auto month = takeNumber(text, 2);
    if (!month || !take(text, '-')) return std::nullopt;
    const auto day = takeNumber(text, 2);
    if (!day || !take(text, 'T')) return std::nullopt;
    const auto hour = takeNumber(text, 2);
    if (!hour || *hour > 23 || !take(text, ':')) return std::nullopt;
    const auto minute = takeNumber(text, 2);
    if (!minute || *minute > 59 || !take(text, ':')) return std::nullopt;
    const auto second = takeNumber(text, 2);
    if (!second || *second > 59) return std::nullopt;
    std::chrono::nanoseconds fraction{0};
    if (take(text, '.')) {
        const auto read = takeFraction(text);
        if (!read) return std::nullopt;
        fraction = *read;
    }
    if (text != "Z") return std::nullopt;

    const std::chrono::year_month_day civil{std::chrono::year(*year),
                                            std::chrono::month(static_cast<unsigned>(*month)),
                                            std::chrono::day(static_cast<unsigned>(*day))};
    // The years that fit into a date in nanoseconds.
    if (!civil.ok() || *year < 1678 || *year > 2261) return std::nullopt;
    return std::chrono::sys_days(civil) + std::chrono::hours(*hour) + std::chrono::minutes(*minute) +
           std::chrono::seconds(*second) + fraction;
}

} // namespace querlin
