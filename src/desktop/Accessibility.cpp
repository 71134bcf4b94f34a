#include "desktop/Accessibility.h"

namespace querlin {

std::string_view name(FieldRole role) {
    switch (role) {
    case FieldRole::other:
        return "unbekannt";
    case FieldRole::textField:
        return "Textfeld";
    case FieldRole::textArea:
        return "Textbereich";
    case FieldRole::comboBox:
        return "Auswahlliste";
    case FieldRole::terminal:
        return "Terminal";
    }
    return {};
}

std::string_view description(FieldFault fault) {
    switch (fault) {
    case FieldFault::notAsked:
        return "nicht gefragt";
    case FieldFault::unavailable:
        return "Eingabefelder sind nicht zugänglich";
    case FieldFault::noField:
        return "keines zu finden";
    case FieldFault::noAnswer:
        return "das Programm antwortet nicht";
    case FieldFault::gone:
        return "es ist nicht mehr da";
    case FieldFault::password:
        return "ein Passwortfeld";
    case FieldFault::noText:
        return "es hat keinen Text";
    case FieldFault::tooLong:
        return "der Text ist zu lang";
    case FieldFault::outOfRange:
        return "der Text ist kürzer";
    }
    return {};
}

} // namespace querlin
