#include "foundation/Json.h"

#include <cmath>
#include <ranges>

#include <rapidjson/encodedstream.h>
#include <rapidjson/error/en.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>

namespace querlin {

namespace {

/// Builds the value from the reader's events; false ends the reading.
class Builder : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, Builder> {
public:
    bool Null() { return put(JsonValue()); }
    bool Bool(bool value) { return put(JsonValue(value)); }
    bool Int(int value) { return put(JsonValue(std::int64_t{value})); }
    bool Uint(unsigned value) { return put(JsonValue(std::int64_t{value})); }
    bool Int64(std::int64_t value) { return put(JsonValue(value)); }
    bool Uint64(std::uint64_t value) {
        // Out of a signed number's range: kept as the nearest double.
        return value <= INT64_MAX ? put(JsonValue(static_cast<std::int64_t>(value)))
                                  : put(JsonValue(static_cast<double>(value)));
    }
    bool Double(double value) { return put(JsonValue(value)); }
    bool String(const char* text, rapidjson::SizeType length, bool) {
        return put(JsonValue(std::string(text, length)));
    }
    bool Key(const char* text, rapidjson::SizeType length, bool) {
        open_.back().key.assign(text, length);
        return true;
    }
    bool StartObject() { return begin(JsonValue::Object()); }
    bool StartArray() { return begin(JsonValue::Array()); }
    bool EndObject(rapidjson::SizeType) { return end(); }
    bool EndArray(rapidjson::SizeType) { return end(); }

    JsonValue take() { return std::move(root_); }

private:
    struct Open {
        std::variant<JsonValue::Array, JsonValue::Object> content;
        std::string key; // of the next member
    };

    template<class Content>
    bool begin(Content content) {
        if (open_.size() >= Json::maximumDepth) return false;
        open_.push_back({std::move(content), {}});
        return true;
    }

    bool end() {
        auto ended = std::move(open_.back());
        open_.pop_back();
        return std::visit([this](auto& content) { return put(JsonValue(std::move(content))); },
                          ended.content);
    }

    bool put(JsonValue value) {
        if (open_.empty()) {
            root_ = std::move(value);
        } else if (auto* object = std::get_if<JsonValue::Object>(&open_.back().content)) {
            object->emplace_back(std::move(open_.back().key), std::move(value));
        } else {
            std::get<JsonValue::Array>(open_.back().content).push_back(std::move(value));
        }
        return true;
    }

    JsonValue root_;
    std::vector<Open> open_;
};

} // namespace

std::optional<double> JsonValue::number() const {
    if (const auto whole = integer()) return static_cast<double>(*whole);
    return copyOf<double>();
}

const JsonValue* JsonValue::member(std::string_view name) const {
    const auto* members = object();
    if (!members) return nullptr;
    for (const auto& [memberName, value] : std::views::reverse(*members)) {
        if (memberName == name) return &value;
    }
    return nullptr;
}

/// Passes a value to one of the library's writers, event by event.
struct JsonWriter {
    template<class Writer>
    static void write(Writer& writer, const JsonValue& value) {
        std::visit([&writer](const auto& content) { put(writer, content); }, value.value_);
    }

private:
    template<class Writer>
    static void put(Writer& writer, std::monostate) {
        writer.Null();
    }
    template<class Writer>
    static void put(Writer& writer, bool value) {
        writer.Bool(value);
    }
    template<class Writer>
    static void put(Writer& writer, std::int64_t value) {
        writer.Int64(value);
    }
    template<class Writer>
    static void put(Writer& writer, double value) {
        if (std::isfinite(value)) {
            writer.Double(value);
        } else {
            writer.Null(); // JSON has no word for it.
        }
    }
    template<class Writer>
    static void put(Writer& writer, const std::string& text) {
        writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
    }
    template<class Writer>
    static void put(Writer& writer, const JsonValue::Array& values) {
        writer.StartArray();
        for (const auto& value : values) write(writer, value);
        writer.EndArray();
    }
    template<class Writer>
    static void put(Writer& writer, const JsonValue::Object& members) {
        writer.StartObject();
        for (const auto& [name, value] : members) {
            writer.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
            write(writer, value);
        }
        writer.EndObject();
    }
};

namespace Json {

namespace {

template<class Writer>
std::string written(const JsonValue& value) {
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    JsonWriter::write(writer, value);
    return {buffer.GetString(), buffer.GetSize()};
}

} // namespace

std::expected<JsonValue, JsonError> parse(std::string_view text) {
    constexpr unsigned flags = rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag |
                               rapidjson::kParseFullPrecisionFlag;
    rapidjson::MemoryStream bytes(text.data(), text.size());
    rapidjson::EncodedInputStream<rapidjson::UTF8<>, rapidjson::MemoryStream> stream(bytes);
    Builder builder;
    rapidjson::Reader reader;
    const auto result = reader.Parse<flags>(stream, builder);
    if (result.IsError()) {
        return std::unexpected(JsonError{result.Offset(), rapidjson::GetParseError_En(result.Code())});
    }
    return builder.take();
}

std::string pretty(const JsonValue& value) {
    return written<rapidjson::PrettyWriter<rapidjson::StringBuffer>>(value);
}

std::string compact(const JsonValue& value) {
    return written<rapidjson::Writer<rapidjson::StringBuffer>>(value);
}

} // namespace Json

} // namespace querlin
