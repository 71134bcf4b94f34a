#pragma once

#include <concepts>
#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace querlin {

/// A JSON value (RFC 8259) for the small files of the program. Objects keep the order of their
/// members; if two members have the same name, the last one counts.
class JsonValue {
public:
    using Array = std::vector<JsonValue>;
    using Object = std::vector<std::pair<std::string, JsonValue>>;

    JsonValue() = default; // null
    /// Only from `bool` itself: a pointer must not convert.
    template<std::same_as<bool> Bool>
    JsonValue(Bool value) : value_(value) {}
    JsonValue(std::int64_t value) : value_(value) {}
    JsonValue(double value) : value_(value) {}
    JsonValue(std::string value) : value_(std::move(value)) {}
    JsonValue(const char* value) : value_(std::string(value)) {}
    JsonValue(Array value) : value_(std::move(value)) {}
    JsonValue(Object value) : value_(std::move(value)) {}

    /// Each is unset for a value of another type. A number written without fraction and exponent is an
    /// integer, any other is a double.
    std::optional<bool> boolean() const { return copyOf<bool>(); }
    std::optional<std::int64_t> integer() const { return copyOf<std::int64_t>(); }
    /// Either kind of number.
    std::optional<double> number() const;
    const std::string* string() const { return std::get_if<std::string>(&value_); }
    const Array* array() const { return std::get_if<Array>(&value_); }
    const Object* object() const { return std::get_if<Object>(&value_); }

    /// The member of an object; null if there is none or this is not an object.
    const JsonValue* member(std::string_view name) const;

    bool operator==(const JsonValue&) const = default;

private:
    template<class Type>
    std::optional<Type> copyOf() const {
        const auto* found = std::get_if<Type>(&value_);
        return found ? std::optional<Type>(*found) : std::nullopt;
    }

    friend struct JsonWriter;
    std::variant<std::monostate, bool, std::int64_t, double, std::string, Array, Object> value_;
};

struct JsonError {
    std::size_t offsetInBytes = 0;
    std::string description;
};

namespace Json {

/// Values nested deeper than this are rejected; our own files come nowhere near it.
inline constexpr std::size_t maximumDepth = 64;

/// Parses a whole text. Ill-formed UTF-8, trailing text and deep nesting are errors.
std::expected<JsonValue, JsonError> parse(std::string_view text);

/// Writes a value on several lines, for files that a person may look into.
std::string pretty(const JsonValue& value);
/// Writes a value on one line without blanks.
std::string compact(const JsonValue& value);

} // namespace Json

} // namespace querlin
