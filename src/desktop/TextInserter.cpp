#include "desktop/TextInserter.h"

namespace querlin {

std::string_view description(InsertError error) {
    switch (error) {
    case InsertError::noAccessibilityPermission:
        return "Ohne Zugang zu Tastatur und Eingabefeldern kann nicht eingefügt werden.";
    }
    return {};
}

} // namespace querlin
