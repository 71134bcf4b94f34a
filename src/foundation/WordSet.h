#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace querlin {

/// A set of words for look-ups; most words that aren't in it are rejected by first byte and length.
template<std::size_t size>
class WordSet {
public:
    constexpr explicit WordSet(const std::array<std::string_view, size>& words) : sorted_(words) {
        std::ranges::sort(sorted_);
        for (const auto word : words) lengths_[firstByte(word)] |= bitOf(word);
    }
    /// Whether a word, in any case, may be in a table of lower-case ASCII words.
    constexpr bool mayContain(std::string_view word) const {
        return !word.empty() && (lengths_[firstByte(word) | 0x20U] & bitOf(word)) != 0;
    }
    constexpr bool contains(std::string_view word) const {
        if (word.empty() || (lengths_[firstByte(word)] & bitOf(word)) == 0) return false;
        return std::ranges::binary_search(sorted_, word);
    }

private:
    static constexpr std::size_t firstByte(std::string_view word) {
        return static_cast<unsigned char>(word.front());
    }
    static constexpr std::uint32_t bitOf(std::string_view word) {
        return std::uint32_t{1} << (word.size() % 32U);
    }

    std::array<std::string_view, size> sorted_;
    /// For each first byte the lengths, modulo 32, of the words that start with it.
    std::array<std::uint32_t, 256> lengths_{};
};

} // namespace querlin
