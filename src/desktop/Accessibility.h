#pragma once

#include <cstdint>
#include <expected>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

namespace querlin {

class AccessibilityElement;
using ElementPointer = std::shared_ptr<AccessibilityElement>;

/// The attributes that are read of an element, and the roles that mean something to us. Whoever stands behind
/// the port translates its own words into these.
namespace AX {
constexpr std::string_view focusedElement = "AXFocusedUIElement";   ///< an element; of a root
constexpr std::string_view role = "AXRole";                         ///< a string
constexpr std::string_view subrole = "AXSubrole";                   ///< a string
constexpr std::string_view value = "AXValue";                       ///< a string: the whole text of a field
constexpr std::string_view characterCount = "AXNumberOfCharacters"; ///< an integer

constexpr std::string_view textArea = "AXTextArea";
constexpr std::string_view textField = "AXTextField";
constexpr std::string_view comboBox = "AXComboBox";
constexpr std::string_view secureTextField = "AXSecureTextField"; ///< a subrole
constexpr std::string_view searchField = "AXSearchField";         ///< a subrole
constexpr std::string_view terminal = "AXTerminal"; ///< a subrole: its keys are those of a terminal
} // namespace AX

/// Why an attribute can't be had, as the log shows it: the negative number of a system error, such as
/// -ETIMEDOUT for an application that doesn't answer, -ENOENT for what isn't there.
using AccessibilityError = int;

using AccessibilityValue = std::variant<std::string, std::int64_t, ElementPointer>;

/// Something in another application's window, or a root where looking begins. Only read, never changed. A
/// value of a password field is never asked for. Main thread; a call waits for the application, but each for
/// a short while only, and one that has just kept us waiting in vain isn't waited for again at once.
class AccessibilityElement {
public:
    virtual ~AccessibilityElement() = default;
    virtual std::expected<AccessibilityValue, AccessibilityError> attribute(std::string_view name) = 0;
    /// The text of a stretch, in characters as the application counts them.
    virtual std::expected<std::string, AccessibilityError> stringForRange(std::int64_t location,
                                                                          std::int64_t length) = 0;
};

/// Looks into other applications.
class Accessibility {
public:
    virtual ~Accessibility() = default;
    /// The root of the whole desktop. Never null.
    virtual ElementPointer systemWide() = 0;
    /// The root of one application. Never null.
    virtual ElementPointer application(std::int32_t processIdentifier) = 0;
};

} // namespace querlin
