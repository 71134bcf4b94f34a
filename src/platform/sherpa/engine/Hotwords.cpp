#include "platform/sherpa/engine/Hotwords.h"

#include "foundation/Files.h"
#include "foundation/TextCase.h"
#include "foundation/Utf8.h"

#include <algorithm>
#include <ranges>

namespace querlin {

namespace {

constexpr std::size_t largestTokensInBytes = 16U << 20U;

/// Phrases are separated by "/", and ":" begins a score.
constexpr bool isReserved(char32_t scalar) {
    return scalar < U' ' || std::u32string_view(U"/:#@").contains(scalar);
}

} // namespace

Hotwords::Hotwords(const std::filesystem::path& tokens) {
    const auto content = Files::read(tokens, largestTokensInBytes);
    if (!content) return;
    for (const auto line : std::views::split(*content, '\n')) {
        const std::string_view row(line.begin(), line.end());
        auto symbol = row.substr(0, row.find_last_of(" \t"));
        if (symbol.starts_with('<')) continue;
        hasCapitals_ = hasCapitals_ || lowercase(symbol) != symbol;
        hasSmallLetters_ = hasSmallLetters_ || uppercase(symbol) != symbol;
        while (!symbol.empty()) {
            const auto [scalar, length] = decodeScalar(symbol);
            letters_.insert(scalar);
            symbol.remove_prefix(length);
        }
    }
}

std::string Hotwords::listOf(const std::vector<std::string>& words) const {
    std::string list;
    for (const auto& word : words) {
        auto written = nfc(word);
        if (hasCapitals_ != hasSmallLetters_)
            written = hasCapitals_ ? uppercase(written) : lowercase(written);
        if (!canWrite(written)) continue;
        if (!list.empty()) list += '/';
        list += written;
    }
    return list;
}

bool Hotwords::canWrite(std::string_view word) const {
    bool hasLetter = false;
    while (!word.empty()) {
        const auto [scalar, length] = decodeScalar(word);
        if (isReserved(scalar) || (scalar != U' ' && !letters_.contains(scalar))) return false;
        hasLetter = hasLetter || scalar != U' ';
        word.remove_prefix(length);
    }
    return hasLetter;
}

} // namespace querlin
