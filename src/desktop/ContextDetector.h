#pragma once

#include "desktop/Accessibility.h"
#include "desktop/DictationContext.h"
#include "desktop/Permissions.h"
#include "desktop/Workspace.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace querlin {

/// Looks at where a dictation will land. Only looks; what can't be found out is unknown. Main thread.
class ContextDetector {
public:
    ContextDetector(PermissionsManager& permissions, Accessibility& accessibility, Workspace& workspace) :
        permissions_(permissions), accessibility_(accessibility), workspace_(workspace) {}

    /// The context of this moment, at once: an application that doesn't answer has an unknown field.
    DictationContext capture();
    /// The element with the keyboard focus; null if there is none to be found. `processIdentifier` is the
    /// application to ask where the desktop as a whole doesn't know.
    ElementPointer focusedElement(std::optional<std::int32_t> processIdentifier);

    /// Nothing if the attribute is missing, fails or is no string.
    static std::optional<std::string> stringValue(AccessibilityElement& element, std::string_view attribute);

private:
    PermissionsManager& permissions_;
    Accessibility& accessibility_;
    Workspace& workspace_;
};

} // namespace querlin
