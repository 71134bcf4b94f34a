#pragma once

#include "foundation/Published.h"
#include "foundation/RawValues.h"
#include "state/JsonRecord.h"
#include "state/PreferencesStore.h"

#include <optional>
#include <string>
#include <string_view>

namespace querlin {

/// How a value of a setting is stored. `read` gives nothing for an absent key, another type and what
/// can't be decoded, which are all the same to the reader.
template<class Value>
struct StoredForm;

/// Values that the store keeps as they are.
template<class Value>
    requires std::is_constructible_v<PreferenceValue, std::in_place_type_t<Value>, Value>
struct StoredForm<Value> {
    static std::optional<Value> read(const PreferencesStore& store, std::string_view key) {
        return store.get<Value>(key);
    }
    static void write(PreferencesStore& store, std::string_view key, const Value& value) {
        store.set(key, PreferenceValue(std::in_place_type<Value>, value));
    }
};

/// An optional value is an absent key when it is none.
template<class Value>
struct StoredForm<std::optional<Value>> {
    static std::optional<std::optional<Value>> read(const PreferencesStore& store, std::string_view key) {
        auto value = StoredForm<Value>::read(store, key);
        return value ? std::optional(std::move(value)) : std::nullopt;
    }
    static void write(PreferencesStore& store, std::string_view key, const std::optional<Value>& value) {
        if (value) {
            StoredForm<Value>::write(store, key, *value);
        } else {
            store.remove(key);
        }
    }
};

/// An enumeration is stored by its raw value.
template<RawValued Enum>
struct StoredForm<Enum> {
    static std::optional<Enum> read(const PreferencesStore& store, std::string_view key) {
        const auto text = store.get<std::string>(key);
        return text ? fromRawValue<Enum>(*text) : std::nullopt;
    }
    static void write(PreferencesStore& store, std::string_view key, Enum value) {
        store.set(key, std::string(rawValue(value)));
    }
};

/// Records are stored as the bytes of their JSON.
template<JsonRecord Record>
struct StoredForm<Record> {
    static std::optional<Record> read(const PreferencesStore& store, std::string_view key) {
        const auto data = store.get<PreferenceData>(key);
        if (!data) return std::nullopt;
        const auto json = Json::parse(data->bytes);
        return json ? fromJson<Record>(*json) : std::nullopt;
    }
    static void write(PreferencesStore& store, std::string_view key, const Record& record) {
        store.set(key, PreferenceData{Json::compact(toJson(record))});
    }
};

/// One setting: a published value that mirrors a key of the store. It is read once; each assignment
/// goes to the observers and to the store. Main thread only.
template<class Value>
class Setting {
public:
    Setting(PreferencesStore& store, std::string_view key, Value fallback) :
        store_(store), key_(key), value_(StoredForm<Value>::read(store, key).value_or(std::move(fallback))) {}

    const Value& get() const { return value_.get(); }
    void set(const Value& value) {
        value_.set(value);
        StoredForm<Value>::write(store_, key_, value_.get()); // An observer may have put it right.
    }
    Registration subscribe(typename Published<Value>::Subscriber subscriber,
                           FirstValue first = FirstValue::Deliver) const {
        return value_.subscribe(std::move(subscriber), first);
    }

private:
    PreferencesStore& store_;
    std::string_view key_;
    Published<Value> value_;
};

} // namespace querlin
