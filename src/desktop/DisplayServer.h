#pragma once

#include "desktop/Clipboard.h"
#include "desktop/FocusReturn.h"
#include "desktop/HoldKey.h"
#include "desktop/PasteKey.h"
#include "desktop/Surfaces.h"
#include "desktop/SystemTray.h"
#include "desktop/Workspace.h"

namespace querlin {

/// All that depends on what kind of display server the session has: one class for each kind, and one object
/// of it, chosen at the start by what is there. Logic and windows know nothing but the ports. Main thread.
class DisplayServer {
public:
    virtual ~DisplayServer() = default;

    // What the server offers at this moment; asked without waiting for long.
    virtual bool canListenToKeys() = 0;
    virtual bool canPressKeys() = 0;

    virtual HoldKey& holdKey() = 0;
    virtual Clipboard& clipboard() = 0;
    virtual PasteKey& pasteKey() = 0;
    virtual Workspace& workspace() = 0;
    virtual FocusReturn& focusReturn() = 0;
    virtual Surfaces& surfaces() = 0;
    virtual SystemTray& systemTray() = 0;
};

} // namespace querlin
