#include "textchain/LegalFormatting.h"

#include "foundation/Pattern.h"
#include "foundation/TextCase.h"

#include <algorithm>
#include <array>
#include <charconv>

#include <fmt/format.h>

namespace querlin::LegalFormatting {

namespace {

struct Month {
    std::string_view name;
    int number;
};

constexpr auto months = std::to_array<Month>({
    {"januar", 1},
    {"februar", 2},
    {"märz", 3},
    {"maerz", 3},
    {"april", 4},
    {"mai", 5},
    {"juni", 6},
    {"juli", 7},
    {"august", 8},
    {"september", 9},
    {"oktober", 10},
    {"november", 11},
    {"dezember", 12},
});
constexpr std::string_view monthNames =
    "januar|februar|märz|maerz|april|mai|juni|juli|august|september|oktober|november|dezember";

/// The value of ASCII digits; nothing for those of another script.
std::optional<int> numberIn(std::string_view digits) {
    int value = 0;
    const auto* end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value);
    return error == std::errc{} && stop == end ? std::optional(value) : std::nullopt;
}

std::optional<std::string> date(std::optional<int> day, std::optional<int> month, std::optional<int> year) {
    const auto isWithin = [](std::optional<int> number, int most) { return number && *number >= 1 && *number <= most; };
    if (!isWithin(day, 31) || !isWithin(month, 12) || !year) return std::nullopt;
    return fmt::format("{:02}.{:02}.{:04}", *day, *month, *year);
}

std::optional<int> monthNamed(std::string_view name) {
    const auto lower = lowercase(name);
    const auto* found = std::ranges::find(months, lower, &Month::name);
    return found == months.end() ? std::nullopt : std::optional(found->number);
}

} // namespace

std::string apply(std::string_view text) { return normalizeCaseNumbers(normalizeDates(text)); }

std::string normalizeDates(std::string_view text) {
    static const Pattern writtenOut(fmt::format(R"(\b(\d{{1,2}})\.?\s+({})\s+(\d{{4}})\b)", monthNames),
                                    LetterCase::ignored, Requirement::pair(Bytes::digitBegins, ByteSet(".") | Bytes::whitespaceBegins));
    static const Pattern numeric(R"(\b(\d{1,2})\.(\d{1,2})\.(\d{4})\b)", LetterCase::counts,
                                 Requirement::pair(ByteSet("."), Bytes::digitBegins));
    const auto inNumbers = writtenOut.replaceEach(text, [](Pattern::Groups match) {
        return date(numberIn(match[1]), monthNamed(match[2]), numberIn(match[3]));
    });
    return numeric.replaceEach(inNumbers, [](Pattern::Groups match) {
        return date(numberIn(match[1]), numberIn(match[2]), numberIn(match[3]));
    });
}

std::string normalizeCaseNumbers(std::string_view text) {
    static const Pattern caseNumber(
        R"((Aktenzeichen|Az\.?|Gesch\.-Nr\.?)\s+([IVXLCDM]+|\d{1,3})\s+(\d{1,6})\s*+(?:/\s*+)?(\d{2,4})\b)",
        LetterCase::ignored, Requirement::beginsWith("aktenzeichen|az|gesch.-nr"));
    return caseNumber.replaceEach(text, [](Pattern::Groups match) {
        return std::optional(fmt::format("{} {} {}/{}", match[1], match[2], match[3], match[4]));
    });
}

} // namespace querlin::LegalFormatting
