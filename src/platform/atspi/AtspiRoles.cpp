#include "platform/atspi/AtspiRoles.h"

namespace querlin {

namespace {

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

/// What can't be edited is no field, whatever its role.
FieldRole roleOf(const AtspiDescription& element) {
    if (element.role == AtspiRole::terminal) return FieldRole::terminal;
    if (isPassword(element)) return FieldRole::textField;
    if (!element.isEditable()) return FieldRole::other;
    if (isSearch(element)) return FieldRole::textField;
    if (element.role == AtspiRole::comboBox) return FieldRole::comboBox;
    if (element.has(AtspiState::singleLine)) return FieldRole::textField;
    if (element.has(AtspiState::multiLine)) return FieldRole::textArea;
    switch (element.role) {
    case AtspiRole::text: // A line edit of Qt 6 sets neither state; its editors set the one of several lines.
    case AtspiRole::entry:
    case AtspiRole::spinButton:
        return FieldRole::textField;
    default: // A part of a document: paragraph, section, the document itself.
        return FieldRole::textArea;
    }
}

} // namespace

/// A password goes before all else.
FieldRecord fieldRecord(const AtspiDescription& element) {
    FieldRecord record;
    record.role = roleOf(element);
    record.isPassword = isPassword(element);
    record.isSearch = !record.isPassword && record.role != FieldRole::other && isSearch(element);
    record.hasSeveralLines = record.role == FieldRole::textArea || record.role == FieldRole::terminal;
    return record;
}

} // namespace querlin
