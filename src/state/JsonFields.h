#pragma once

#include "foundation/Json.h"
#include "foundation/RawValues.h"

#include <optional>
#include <string>
#include <string_view>

/// Reading the required members of a stored object; a missing one and one of another type are the same.
namespace querlin::JsonFields {

inline std::optional<std::string> string(const JsonValue& json, std::string_view key) {
    const auto* member = json.member(key);
    return member && member->string() ? std::optional(*member->string()) : std::nullopt;
}

inline std::optional<bool> boolean(const JsonValue& json, std::string_view key) {
    const auto* member = json.member(key);
    return member ? member->boolean() : std::nullopt;
}

inline std::optional<std::int64_t> integer(const JsonValue& json, std::string_view key) {
    const auto* member = json.member(key);
    return member ? member->integer() : std::nullopt;
}

template<RawValued Enum>
std::optional<Enum> rawValued(const JsonValue& json, std::string_view key) {
    const auto text = string(json, key);
    return text ? fromRawValue<Enum>(*text) : std::nullopt;
}

} // namespace querlin::JsonFields
