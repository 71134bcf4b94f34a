#pragma once

#include "platform/atspi/AtspiAccessibility.h"
#include "support/CapturedLog.h"
#include "support/Desktop.h"

#include <charconv>

#include <gtest/gtest.h>

namespace querlin {

inline std::optional<std::int32_t> number(const std::string& text) {
    std::int32_t value = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
    return fault == std::errc() ? std::optional(value) : std::nullopt;
}

/// "Textfeld (Suche): Text"; a text that can't be had is "-".
inline std::string described(Field& field) {
    const auto record = field.look(FieldLook::contents);
    if (!record) return std::string(description(record.error()));
    const std::string mark = record->isPassword ? " (Passwort)" : record->isSearch ? " (Suche)" : "";
    return std::string(name(record->role)) + mark + ": " + record->text.value_or("-");
}

/// Looks at the program in front, as a dictation does.
struct FieldsTest : testing::Test {
    static std::optional<std::int32_t> activeWindow() { return number(shell("xdotool getactivewindow getwindowpid")); }

    CapturedLog log;
    /// Asked afresh unless it is set: for tests that count milliseconds.
    std::optional<std::int32_t> knownFront;
    std::optional<std::int32_t> front() const { return knownFront ? knownFront : activeWindow(); }
    AtspiAccessibility accessibility{[this] { return front(); }};

    /// What the search finds, as soon as it does: on a busy machine it may run out of its time.
    std::string searchedField() {
        auto field = accessibility.searchedField();
        eventually([&] { return (field = accessibility.searchedField()).has_value(); });
        return field ? described(**field) : "nothing";
    }
    std::string look() {
        const auto field = accessibility.focusedField();
        return field ? described(**field) : "nothing";
    }
    /// Waits until the field with the focus is described like this.
    testing::AssertionResult becomes(const std::string& wanted, Duration longest = std::chrono::seconds(10)) {
        if (eventually([&] { return look() == wanted; }, longest)) return testing::AssertionSuccess();
        return testing::AssertionFailure() << look();
    }
};

} // namespace querlin
