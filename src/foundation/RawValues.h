#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace querlin {

/// One case of an enumeration that is stored and shown: its stable text in files and its display name.
template<class Enum>
struct EnumRow {
    Enum value;
    std::string_view rawValue;
    std::string_view displayName;
};

/// An enumeration with a table of its cases: `constexpr std::array<EnumRow<Kind>, n> enumRows(Kind)`
/// beside its declaration, in the order of the cases, which is also the order of lists shown to the user.
template<class Enum>
concept RawValued = requires(Enum value) { enumRows(value); };

template<RawValued Enum>
constexpr const EnumRow<Enum>& enumRow(Enum value) {
    static constexpr auto rows = enumRows(Enum());
    static_assert(
        [] {
            for (std::size_t i = 0; i < rows.size(); ++i) {
                if (rows[i].value != static_cast<Enum>(i)) return false;
            }
            return true;
        }(),
        "the rows stand in the order of the cases, and none is missing");
    return rows[static_cast<std::size_t>(value)];
}

template<RawValued Enum>
constexpr std::string_view rawValue(Enum value) {
    return enumRow(value).rawValue;
}

template<RawValued Enum>
constexpr std::string_view displayName(Enum value) {
    return enumRow(value).displayName;
}

/// The case with this raw value, compared exactly; unset if there is none.
template<RawValued Enum>
constexpr std::optional<Enum> fromRawValue(std::string_view rawValue) {
    for (const auto& row : enumRows(Enum())) {
        if (row.rawValue == rawValue) return row.value;
    }
    return std::nullopt;
}

} // namespace querlin
