#pragma once

#include "desktop/DisplayServer.h"
#include "platform/x11/X11Capabilities.h"
#include "platform/x11/X11Clipboard.h"
#include "platform/x11/X11FocusReturn.h"
#include "platform/x11/X11HoldKey.h"
#include "platform/x11/X11PasteKey.h"
#include "platform/x11/X11Workspace.h"

#include <memory>

namespace querlin {

/// The X server of the environment. What goes over the toolkit's own connection to it is handed in.
class X11DisplayServer final : public DisplayServer {
public:
    X11DisplayServer(MainQueue& queue, std::unique_ptr<Surfaces> surfaces,
                     std::unique_ptr<SystemTray> systemTray) :
        surfaces_(std::move(surfaces)),
        systemTray_(std::move(systemTray)),
        holdKey_(queue, ownKeys_),
        clipboard_(queue),
        pasteKey_(queue, ownKeys_),
        focusReturn_(queue) {}

    bool canListenToKeys() override { return capabilities_.canListenToKeys(); }
    bool canPressKeys() override { return capabilities_.canPressKeys(); }

    HoldKey& holdKey() override { return holdKey_; }
    Clipboard& clipboard() override { return clipboard_; }
    PasteKey& pasteKey() override { return pasteKey_; }
    Workspace& workspace() override { return workspace_; }
    FocusReturn& focusReturn() override { return focusReturn_; }
    Surfaces& surfaces() override { return *surfaces_; }
    SystemTray& systemTray() override { return *systemTray_; }

private:
    std::unique_ptr<Surfaces> surfaces_;
    std::unique_ptr<SystemTray> systemTray_;
    std::shared_ptr<OwnKeys> ownKeys_ = std::make_shared<OwnKeys>();
    X11Capabilities capabilities_;
    X11Workspace workspace_;
    X11HoldKey holdKey_;
    X11Clipboard clipboard_;
    X11PasteKey pasteKey_;
    X11FocusReturn focusReturn_;
};

} // namespace querlin
