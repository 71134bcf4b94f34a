#include "state/PreferenceDomain.h"

#include "foundation/Files.h"
#include "foundation/IsoDate.h"
#include "foundation/Utf8.h"

#include <charconv>

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr std::string_view dateMember = "date";
constexpr std::string_view dataMember = "data";
constexpr std::string_view hexMember = "dataHex";

/// The text of an object's only member, if that is its name.
const std::string* onlyMember(const JsonValue& value, std::string_view name) {
    const auto* members = value.object();
    if (!members || members->size() != 1 || members->front().first != name) return nullptr;
    return members->front().second.string();
}

JsonValue::Object object(std::string_view member, std::string text) {
    return {{std::string(member), JsonValue(std::move(text))}};
}

std::string hexadecimal(std::string_view bytes) {
    std::string digits;
    for (const char byte : bytes) digits += fmt::format("{:02x}", static_cast<unsigned char>(byte));
    return digits;
}

std::optional<std::string> fromHexadecimal(std::string_view digits) {
    if (digits.size() % 2 != 0) return std::nullopt;
    std::string bytes;
    for (std::size_t at = 0; at < digits.size(); at += 2) {
        const std::string pair(digits.substr(at, 2));
        unsigned value = 0;
        const auto [end, error] = std::from_chars(pair.c_str(), pair.c_str() + 2, value, 16);
        if (error != std::errc() || end != pair.c_str() + 2) return std::nullopt;
        bytes += static_cast<char>(value);
    }
    return bytes;
}

struct Encoder {
    JsonValue operator()(bool value) const { return value; }
    JsonValue operator()(std::int64_t value) const { return value; }
    JsonValue operator()(double value) const { return value; }
    JsonValue operator()(const std::string& value) const { return validUtf8(value); }
    JsonValue operator()(Date value) const { return object(dateMember, isoDate(value)); }
    JsonValue operator()(PreferenceData value) const {
        return isValidUtf8(value.bytes) ? object(dataMember, std::move(value.bytes))
                                        : object(hexMember, hexadecimal(value.bytes));
    }
    JsonValue operator()(const std::vector<std::string>& values) const {
        JsonValue::Array array;
        for (const auto& value : values) array.emplace_back(validUtf8(value));
        return array;
    }
};

} // namespace

std::expected<PreferenceDomain, DomainFault> PreferenceDomain::read(const std::filesystem::path& file) {
    const auto content = Files::read(file);
    if (!content) {
        return std::unexpected(content.error().isMissing() ? DomainFault::NotThere : DomainFault::Unreadable);
    }
    const auto root = Json::parse(*content);
    if (!root || !root->object()) return std::unexpected(DomainFault::Damaged);
    PreferenceDomain domain;
    for (const auto& [key, value] : *root->object()) domain.values_.insert_or_assign(key, value);
    return domain;
}

std::string PreferenceDomain::text() const {
    return Json::pretty(JsonValue::Object(values_.begin(), values_.end())) + '\n';
}

const JsonValue* PreferenceDomain::find(std::string_view key) const {
    const auto found = values_.find(key);
    return found == values_.end() ? nullptr : &found->second;
}

template<>
std::optional<bool> PreferenceDomain::get(std::string_view key) const {
    const auto* value = find(key);
    return value ? value->boolean() : std::nullopt;
}

template<>
std::optional<std::int64_t> PreferenceDomain::get(std::string_view key) const {
    const auto* value = find(key);
    return value ? value->integer() : std::nullopt;
}

template<>
std::optional<double> PreferenceDomain::get(std::string_view key) const {
    const auto* value = find(key);
    return value ? value->number() : std::nullopt;
}

template<>
std::optional<std::string> PreferenceDomain::get(std::string_view key) const {
    const auto* value = find(key);
    return value && value->string() ? std::optional(*value->string()) : std::nullopt;
}

template<>
std::optional<Date> PreferenceDomain::get(std::string_view key) const {
    const auto* value = find(key);
    const auto* text = value ? onlyMember(*value, dateMember) : nullptr;
    return text ? parseIsoDate(*text) : std::nullopt;
}

template<>
std::optional<PreferenceData> PreferenceDomain::get(std::string_view key) const {
    const auto* value = find(key);
    if (!value) return std::nullopt;
    if (const auto* text = onlyMember(*value, dataMember)) return PreferenceData{*text};
    const auto* digits = onlyMember(*value, hexMember);
    auto bytes = digits ? fromHexadecimal(*digits) : std::nullopt;
    return bytes ? std::optional(PreferenceData{std::move(*bytes)}) : std::nullopt;
}

template<>
std::optional<std::vector<std::string>> PreferenceDomain::get(std::string_view key) const {
    const auto* value = find(key);
    const auto* array = value ? value->array() : nullptr;
    if (!array) return std::nullopt;
    std::vector<std::string> strings;
    for (const auto& element : *array) {
        if (!element.string()) return std::nullopt;
        strings.push_back(*element.string());
    }
    return strings;
}

void PreferenceDomain::set(std::string_view key, PreferenceValue value) {
    values_.insert_or_assign(std::string(key), std::visit(Encoder(), std::move(value)));
}

void PreferenceDomain::remove(std::string_view key) {
    if (const auto found = values_.find(key); found != values_.end()) values_.erase(found);
}

void PreferenceDomain::copyFrom(const PreferenceDomain& other, std::string_view key) {
    if (const auto* value = other.find(key)) values_.insert_or_assign(std::string(key), *value);
}

} // namespace querlin
