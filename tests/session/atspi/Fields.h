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

/// "role subrole value"; what can't be had is "-".
inline std::string described(AccessibilityElement& element) {
    std::string words;
    for (const auto name : {AX::role, AX::subrole, AX::value}) {
        const auto value = element.attribute(name);
        const auto* text = value ? std::get_if<std::string>(&*value) : nullptr;
        words += (words.empty() ? "" : " ") + (text ? *text : "-");
    }
    return words;
}

/// Looks at the program in front, as a dictation does.
struct FieldsTest : testing::Test {
    static std::optional<std::int32_t> activeWindow() { return number(shell("xdotool getactivewindow getwindowpid")); }

    CapturedLog log;
    /// Asked afresh unless it is set: for tests that count milliseconds.
    std::optional<std::int32_t> knownFront;
    std::optional<std::int32_t> front() const { return knownFront ? knownFront : activeWindow(); }
    AtspiAccessibility accessibility{[this] { return front(); }};

    std::expected<AccessibilityValue, AccessibilityError> tracked() { return accessibility.systemWide()->attribute(AX::focusedElement); }
    std::expected<AccessibilityValue, AccessibilityError> searched() {
        return accessibility.application(front().value_or(0))->attribute(AX::focusedElement);
    }
    ElementPointer focused() {
        auto value = tracked();
        return value ? std::get<ElementPointer>(*value) : nullptr;
    }
    /// What the search finds, as soon as it does: on a busy machine it may run out of its time.
    std::string searchedField() {
        ElementPointer element;
        eventually([&] {
            if (auto value = searched()) element = std::get<ElementPointer>(*value);
            return element != nullptr;
        });
        return element ? described(*element) : "nothing";
    }
    std::string look() {
        auto found = tracked();
        if (!found) found = searched();
        return found ? described(*std::get<ElementPointer>(*found)) : "nothing";
    }
    /// Waits until the field with the focus is described like this.
    testing::AssertionResult becomes(const std::string& wanted, Duration longest = std::chrono::seconds(10)) {
        if (eventually([&] { return look() == wanted; }, longest)) return testing::AssertionSuccess();
        return testing::AssertionFailure() << look();
    }
};

} // namespace querlin
