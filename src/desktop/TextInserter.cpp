#include "desktop/TextInserter.h"

namespace querlin {

std::string_view description(InsertError error) {
    switch (error) {
    case InsertError::noAccessibilityPermission:
        return "Ohne Bedienungshilfen-Berechtigung kann nicht eingefügt werden.";
    }
    return {};
}

} // namespace querlin
