#include "textchain/GermanNumberWords.h"

#include "foundation/Replacing.h"
#include "foundation/TextCase.h"
#include "foundation/Trimming.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <vector>

namespace querlin::GermanNumberWords {

namespace {

struct Row {
    std::string_view word;
    std::int64_t value;
};

constexpr std::array<Row, 14> units = {{
    {"null", 0},
    {"ein", 1},
    {"eins", 1},
    {"eine", 1},
    {"zwei", 2},
    {"zwo", 2},
    {"drei", 3},
    {"vier", 4},
    {"fünf", 5},
    {"fuenf", 5},
    {"sechs", 6},
    {"sieben", 7},
    {"acht", 8},
    {"neun", 9},
}};

constexpr std::array<Row, 12> teens = {{
    {"zehn", 10},
    {"elf", 11},
    {"zwölf", 12},
    {"zwoelf", 12},
    {"dreizehn", 13},
    {"vierzehn", 14},
    {"fünfzehn", 15},
    {"fuenfzehn", 15},
    {"sechzehn", 16},
    {"siebzehn", 17},
    {"achtzehn", 18},
    {"neunzehn", 19},
}};

constexpr std::array<Row, 10> tens = {{
    {"zwanzig", 20},
    {"dreißig", 30},
    {"dreissig", 30},
    {"vierzig", 40},
    {"fünfzig", 50},
    {"fuenfzig", 50},
    {"sechzig", 60},
    {"siebzig", 70},
    {"achtzig", 80},
    {"neunzig", 90},
}};

constexpr Row thousand = {"tausend", 1000};
constexpr Row hundred = {"hundert", 100};

using Value = std::optional<std::int64_t>;

Value find(std::span<const Row> rows, std::string_view word) {
    const auto found = std::ranges::find(rows, word, &Row::word);
    return found == rows.end() ? std::nullopt : std::optional(found->value);
}

/// The lengths of all words in the tables, as bits.
constexpr auto lengths = [] {
    std::uint64_t bits = 0;
    const auto take = [&bits](std::span<const Row> rows) {
        for (const auto& row : rows) bits |= std::uint64_t{1} << row.word.size();
    };
    take(units);
    take(teens);
    take(tens);
    return bits;
}();

Value simpleValue(std::string_view word) {
    if (word.size() >= 64 || (lengths >> word.size() & 1U) == 0) return std::nullopt;
    if (const auto unit = find(units, word)) return unit;
    if (const auto teen = find(teens, word)) return teen;
    return find(tens, word);
}

/// "einundzwanzig": a unit and a ten.
Value unitAndTen(std::string_view word) {
    constexpr std::string_view conjunction = "und";
    const auto at = word.find(conjunction);
    if (at == std::string_view::npos) return std::nullopt;
    const auto unit = find(units, word.substr(0, at));
    const auto ten = find(tens, word.substr(at + conjunction.size()));
    return unit && ten ? std::optional(*unit + *ten) : std::nullopt;
}

/// The value of a word that contains no scale words but `scales`, which are tried in order. The part after a
/// scale word is read in a loop, not recursively, however long the word is.
Value valueOf(std::string_view word, std::span<const Row> scales) {
    std::int64_t total = 0;
    while (true) {
        if (const auto simple = simpleValue(word)) return total + *simple;
        auto at = std::string_view::npos;
        while (!scales.empty() && (at = word.find(scales.front().word)) == std::string_view::npos) {
            scales = scales.subspan(1); // Not in this word, so not in its remainder either.
        }
        if (scales.empty()) {
            const auto compound = unitAndTen(word);
            return compound ? std::optional(total + *compound) : std::nullopt;
        }
        const auto factor = at == 0 ? Value(1) : valueOf(word.substr(0, at), scales.subspan(1));
        if (!factor) return std::nullopt;
        total += *factor * scales.front().value;
        word.remove_prefix(at + scales.front().word.size());
        if (word.empty()) return total;
    }
}

/// Lower case, composed, "ss" for "ß", without surrounding blanks.
std::string prepared(std::string_view word) {
    return std::string(trimBlanksAndTabs(replacingAll(nfc(lowercase(word)), "ß", "ss")));
}

} // namespace

std::optional<std::int64_t> parseWord(std::string_view word) {
    constexpr std::array scales = {thousand, hundred};
    const auto ready = prepared(word);
    return ready.empty() ? std::nullopt : valueOf(ready, scales);
}

bool isNumberWord(std::string_view word) { return parseWord(word).has_value(); }

std::optional<std::string> digits(std::span<const std::string_view> words) {
    if (words.empty()) return std::nullopt;
    std::vector<std::int64_t> values;
    for (const auto word : words) {
        const auto value = parseWord(word);
        if (!value) return std::nullopt;
        values.push_back(*value);
    }
    if (std::ranges::any_of(values, [](auto value) { return value >= hundred.value; })) {
        return std::to_string(std::accumulate(values.begin(), values.end(), std::int64_t{0}));
    }
    std::string text;
    for (const auto value : values) text += std::to_string(value);
    return text;
}

} // namespace querlin::GermanNumberWords
