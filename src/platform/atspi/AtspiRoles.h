#pragma once

#include "desktop/Accessibility.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace querlin {

/// States of an element, as the bits of the 64-bit set that the accessibility bus hands out (AtspiStateType).
namespace AtspiState {
constexpr std::uint64_t bit(unsigned number) { return std::uint64_t{1} << number; }
constexpr std::uint64_t active = bit(1);
constexpr std::uint64_t editable = bit(7);
constexpr std::uint64_t focused = bit(12);
constexpr std::uint64_t multiLine = bit(17);
constexpr std::uint64_t showing = bit(25);
constexpr std::uint64_t singleLine = bit(26);
constexpr std::uint64_t visible = bit(30);
constexpr std::uint64_t readOnly = bit(43); ///< said by Qt besides editable
} // namespace AtspiState

/// Roles of elements that matter here, by their numbers on the accessibility bus (AtspiRole).
namespace AtspiRole {
constexpr std::uint32_t comboBox = 11;
constexpr std::uint32_t passwordText = 40;
constexpr std::uint32_t spinButton = 52;
constexpr std::uint32_t terminal = 60;
constexpr std::uint32_t text = 61;
constexpr std::uint32_t entry = 79;
} // namespace AtspiRole

using AtspiAttributes = std::map<std::string, std::string, std::less<>>;

/// What an element says about itself.
struct AtspiDescription {
    std::uint32_t role = 0;
    std::uint64_t states = 0;
    AtspiAttributes attributes;

    bool has(std::uint64_t state) const { return (states & state) != 0; }
    bool isEditable() const { return has(AtspiState::editable) && !has(AtspiState::readOnly); }
};

/// The same in the port's words: the kind of the field, without its contents.
FieldRecord fieldRecord(const AtspiDescription& element);

} // namespace querlin
