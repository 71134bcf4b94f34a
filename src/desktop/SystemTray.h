#pragma once

#include "foundation/Published.h"

namespace querlin {

/// A panel that takes windows of programs into its tray. Others take symbols over the session bus. Main
/// thread.
class SystemTray {
public:
    virtual ~SystemTray() = default;
    virtual const Published<bool>& isThere() const = 0;
};

} // namespace querlin
