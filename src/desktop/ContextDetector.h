#pragma once

#include "desktop/Accessibility.h"
#include "desktop/DictationContext.h"
#include "desktop/Permissions.h"
#include "desktop/Workspace.h"

namespace querlin {

/// Looks at where a dictation will land. Only looks; what can't be found out is unknown. Main thread.
class ContextDetector {
public:
    ContextDetector(PermissionsManager& permissions, Accessibility& accessibility, Workspace& workspace) :
        permissions_(permissions), accessibility_(accessibility), workspace_(workspace) {}

    /// The context of this moment, at once: an application that doesn't answer has an unknown field.
    DictationContext capture();

private:
    DictationContext::FieldKind kindOfFocusedField();

    PermissionsManager& permissions_;
    Accessibility& accessibility_;
    Workspace& workspace_;
};

} // namespace querlin
