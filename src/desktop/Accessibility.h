#pragma once

#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace querlin {

/// What sort of element has the keyboard focus. `other` is whatever takes no text.
enum class FieldRole : std::uint8_t { other, textField, textArea, comboBox, terminal };

/// For the log, in German: "Textbereich".
std::string_view name(FieldRole role);

/// Why something of a field can't be had.
enum class FieldFault : std::uint8_t {
    notAsked,
    unavailable, ///< there is no way to look into applications at the moment
    noField,     ///< no element has the focus, or none that is known
    noAnswer,    ///< the application didn't answer in time
    gone,        ///< the element is no more
    password,    ///< nobody's business
    noText,      ///< the element has none
    tooLong,
    outOfRange
};

/// For the log, in German.
std::string_view description(FieldFault fault);

/// A stretch of a text, in characters as the application counts them.
struct TextRange {
    std::int64_t start = 0;
    std::int64_t length = 0;

    bool operator==(const TextRange&) const = default;
};

/// What a field was at one moment.
struct FieldRecord {
    FieldRole role = FieldRole::other;
    bool isPassword = false;
    bool isSearch = false;
    bool hasSeveralLines = false;
    /// Of the application that shows it; 0 if that isn't known.
    std::int32_t processIdentifier = 0;

    // The contents; of a password field they are never asked for.
    std::expected<std::string, FieldFault> text = std::unexpected(FieldFault::notAsked);
    /// In characters as the application counts them. May be known where the text isn't.
    std::optional<std::int64_t> length = std::nullopt;
    /// Empty at the cursor where nothing is selected.
    std::optional<TextRange> selection = std::nullopt;

    bool operator==(const FieldRecord&) const = default;
};

/// How much of a field is looked at.
enum class FieldLook : std::uint8_t { kind, contents };

/// An element of another application, which may change or go at any time. Only read, never changed. Main
/// thread; a look waits for the application, but for a short while only, and one that has just kept us
/// waiting in vain isn't waited for again at once.
class Field {
public:
    virtual ~Field() = default;
    /// All of it in one look. Fails only where not even the kind can be had.
    virtual std::expected<FieldRecord, FieldFault> look(FieldLook depth) = 0;
    /// A stretch of the text, which ends with the text itself at the latest.
    virtual std::expected<std::string, FieldFault> text(TextRange range) = 0;
};
using FieldPointer = std::shared_ptr<Field>;

/// Looks into other applications. Main thread.
class Accessibility {
public:
    virtual ~Accessibility() = default;
    /// The element with the keyboard focus, of the application in front; never null.
    virtual std::expected<FieldPointer, FieldFault> focusedField() = 0;
};

} // namespace querlin
