#pragma once

#include "foundation/Json.h"

#include <optional>
#include <vector>

namespace querlin {

/// A record with its form as a JSON object beside it: `toJson(record)`, and `readJson(json, tag)`, which
/// gives nothing for what it can't decode. The tag is a null pointer that names the type.
template<class Record>
concept JsonRecord = requires(const Record& record, const JsonValue& json) {
    toJson(record);
    readJson(json, &record);
};

/// Reads a record: `fromJson<TextBlock>(json)`.
template<class Record>
std::optional<Record> fromJson(const JsonValue& json) {
    return readJson(json, static_cast<const Record*>(nullptr));
}

/// A list of records is one JSON array; a single bad element makes the list undecodable.
template<JsonRecord Record>
JsonValue toJson(const std::vector<Record>& records) {
    JsonValue::Array array;
    for (const auto& record : records) array.push_back(toJson(record));
    return array;
}

template<JsonRecord Record>
std::optional<std::vector<Record>> readJson(const JsonValue& json, const std::vector<Record>*) {
    if (!json.array()) return std::nullopt;
    std::vector<Record> records;
    for (const auto& element : *json.array()) {
        auto record = fromJson<Record>(element);
        if (!record) return std::nullopt;
        records.push_back(std::move(*record));
    }
    return records;
}

} // namespace querlin
