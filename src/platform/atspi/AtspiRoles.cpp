#include "platform/atspi/AtspiRoles.h"

#include "desktop/Accessibility.h"

namespace querlin {

namespace {

constexpr std::string_view unknownRole = "AXUnknown";

std::string_view attribute(const AtspiDescription& element, std::string_view name) {
    const auto found = element.attributes.find(name);
    return found == element.attributes.end() ? std::string_view() : std::string_view(found->second);
}

bool isPassword(const AtspiDescription& element) {
    return element.role == AtspiRole::passwordText || attribute(element, "text-input-type") == "password";
}

bool isSearch(const AtspiDescription& element) {
    return attribute(element, "text-input-type") == "search" ||
           attribute(element, "xml-roles").contains("searchbox");
}

} // namespace

/// A password goes before all else. What can't be edited is no field, whatever its role.
AtspiRoles AtspiRoles::of(const AtspiDescription& element) {
    if (isPassword(element)) return {AX::textField, AX::secureTextField};
    if (element.role == AtspiRole::terminal) return {AX::textArea, AX::terminal};
    if (!element.isEditable()) return {unknownRole, {}};
    if (isSearch(element)) return {AX::textField, AX::searchField};
    if (element.role == AtspiRole::comboBox) return {AX::comboBox, {}};
    if (element.has(AtspiState::singleLine)) return {AX::textField, {}};
    if (element.has(AtspiState::multiLine)) return {AX::textArea, {}};
    switch (element.role) {
    case AtspiRole::text: // A line edit of Qt 6 sets neither state; its editors set the one of several lines.
    case AtspiRole::entry:
    case AtspiRole::spinButton:
        return {AX::textField, {}};
    default: // A part of a document: paragraph, section, the document itself.
        return {AX::textArea, {}};
    }
}

} // namespace querlin
