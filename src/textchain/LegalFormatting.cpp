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

/// A footnote's "²" may follow a number.
constexpr std::string_view wordEnd = R"((?![\p{L}\p{M}\p{Nd}_]))";

int numberIn(std::string_view digits) {
    int value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return value;
}

std::optional<std::string> date(int day, int month, int year) {
    if (day < 1 || day > 31 || month < 1 || month > 12) return std::nullopt;
    return fmt::format("{:02}.{:02}.{:04}", day, month, year);
}

/// 0 for words that only look like a month because of a long s.
int monthNamed(std::string_view name) {
    const auto lower = lowercase(name);
    const auto* found = std::ranges::find(months, lower, &Month::name);
    return found == months.end() ? 0 : found->number;
}

} // namespace

std::string apply(std::string_view text) { return normalizeCaseNumbers(normalizeDates(text)); }

std::string normalizeDates(std::string_view text) {
    static const Pattern writtenOut(
        fmt::format(R"(\b([0-9]{{1,2}})\.?\s+({})\s+([0-9]{{4}}){})", monthNames, wordEnd),
        LetterCase::ignored, Requirement::pair(Bytes::digits, ByteSet(".") | Bytes::whitespaceBegins));
    static const Pattern numeric(fmt::format(R"(\b([0-9]{{1,2}})\.([0-9]{{1,2}})\.([0-9]{{4}}){})", wordEnd),
                                 LetterCase::counts, Requirement::pair(ByteSet("."), Bytes::digits));
    auto inNumbers = writtenOut.replaceEach(std::string(text), [](Pattern::Groups match) {
        return date(numberIn(match[1]), monthNamed(match[2]), numberIn(match[3]));
    });
    return numeric.replaceEach(std::move(inNumbers), [](Pattern::Groups match) {
        return date(numberIn(match[1]), numberIn(match[2]), numberIn(match[3]));
    });
}

std::string normalizeCaseNumbers(std::string_view text) {
    static const Pattern caseNumber(
        fmt::format(
            R"((Aktenzeichen|Az\.?|Gesch\.-Nr\.?)\s+([IVXLCDM]+|\d{{1,3}})\s+(\d{{1,6}})\s*+(?:/\s*+)?(\d{{2,4}}){})",
            wordEnd),
        LetterCase::ignored, Requirement::beginsWith("aktenzeichen|az|gesch.-nr"));
    return caseNumber.replaceEach(std::string(text), [](Pattern::Groups match) {
        return std::optional(fmt::format("{} {} {}/{}", match[1], match[2], match[3], match[4]));
    });
}

} // namespace querlin::LegalFormatting
