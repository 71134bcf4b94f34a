#pragma once

#include "foundation/Json.h"
#include "foundation/Time.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace querlin {

/// Bytes of some other form, kept as they are.
struct PreferenceData {
    std::string bytes;
    bool operator==(const PreferenceData&) const = default;
};

using PreferenceValue =
    std::variant<bool, std::int64_t, double, std::string, Date, PreferenceData, std::vector<std::string>>;

/// Why a domain's file gave nothing.
enum class DomainFault : std::uint8_t {
    NotThere,
    Unreadable, ///< the system refuses to read it
    Damaged     ///< it isn't what `PreferenceDomain::text` writes
};

/// The typed values of one preferences domain, by key, and their form in a file: one JSON object.
///
///     { "playStartSound": true, "maxDictationMinutes": 15, "statsSpokenSeconds": 12.5,
///       "inputDeviceUID": "alsa_input.pci", "installedAt": {"date": "2026-03-01T09:30:00Z"},
///       "hotkeyConfig": {"data": "{\"mode\":…}"}, "userDictionary": ["Nießbrauch"] }
///
/// Data that is no UTF-8 stands in hexadecimal under "dataHex". A value of a form unknown here is
/// kept and written back untouched.
class PreferenceDomain {
public:
    static std::expected<PreferenceDomain, DomainFault> read(const std::filesystem::path& file);
    std::string text() const;

    bool contains(std::string_view key) const { return values_.contains(key); }

    /// The value at `key`; nothing if there is none or it is of another type. A double may have been
    /// written as a whole number.
    template<class Type>
    std::optional<Type> get(std::string_view key) const;

    void set(std::string_view key, PreferenceValue value);
    void remove(std::string_view key);
    /// Takes over another domain's value unchanged, whatever its form.
    void copyFrom(const PreferenceDomain& other, std::string_view key);

private:
    const JsonValue* find(std::string_view key) const;

    std::map<std::string, JsonValue, std::less<>> values_;
};

} // namespace querlin
