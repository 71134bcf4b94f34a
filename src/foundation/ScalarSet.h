#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace querlin {

/// A small set of Unicode scalars; quick for those of ASCII.
class ScalarSet {
public:
    constexpr explicit ScalarSet(std::u32string_view scalars) : scalars_(scalars) {
        for (const auto scalar : scalars) {
            if (scalar < 0x80) ascii_[scalar / 64U] |= std::uint64_t{1} << (scalar % 64U);
        }
    }
    constexpr bool contains(char32_t scalar) const {
        if (scalar < 0x80) return (ascii_[scalar / 64U] >> (scalar % 64U) & 1U) != 0;
        return scalars_.contains(scalar);
    }

private:
    std::array<std::uint64_t, 2> ascii_{};
    std::u32string_view scalars_;
};

} // namespace querlin
