#pragma once

#include "foundation/Registration.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace querlin {

/// Whether a new subscriber gets the current value at once.
enum class FirstValue : std::uint8_t { Deliver, Skip };

/// A value that can be observed. Main thread only.
///
/// Subscribers are called in the order of subscription, with each assigned value, even an equal one. A
/// subscriber may assign, subscribe and unsubscribe while it is called; every subscriber then gets the newest
/// value last.
template<class Value>
class Published {
public:
    using Subscriber = std::move_only_function<void(const Value&)>;

    explicit Published(Value initial = Value()) : state_(std::make_shared<State>(std::move(initial))) {}
    Published(const Published&) = delete;
    Published& operator=(const Published&) = delete;

    const Value& get() const { return state_->value; }

    void set(Value value) {
        const auto state = state_; // Kept alive in case a subscriber destroys this object.
        state->value = std::move(value);
        const auto generation = ++state->generation;
        const auto known = state->entries; // Subscribers added during the call get the value on subscribing.
        for (const auto& entry : known) {
            if (entry->subscriber && entry->active) entry->subscriber(state->value);
            if (state->generation != generation) return; // A nested assignment has already called everyone.
        }
    }

    /// The subscription lasts as long as the registration, and may outlive this object.
    Registration subscribe(Subscriber subscriber, FirstValue first = FirstValue::Deliver) const {
        auto entry = std::make_shared<Entry>(std::move(subscriber));
        state_->entries.push_back(entry);
        if (first == FirstValue::Deliver) entry->subscriber(state_->value);
        return Registration([weak = std::weak_ptr(state_), entry] {
            entry->active = false;
            if (const auto state = weak.lock()) std::erase(state->entries, entry);
        });
    }

private:
    struct Entry {
        explicit Entry(Subscriber called) : subscriber(std::move(called)) {}
        Subscriber subscriber;
        bool active = true;
    };
    struct State {
        explicit State(Value initial) : value(std::move(initial)) {}
        Value value;
        std::uint64_t generation = 0;
        std::vector<std::shared_ptr<Entry>> entries;
    };
    std::shared_ptr<State> state_;
};

} // namespace querlin
