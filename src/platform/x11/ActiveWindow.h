#pragma once

#include "platform/x11/XcbAtoms.h"

#include <cstdint>
#include <optional>
#include <string>

namespace querlin {

/// What the window that has the keyboard says about the program it belongs to.
struct ActiveWindow {
    std::int32_t processIdentifier = 0; ///< 0 if it doesn't say
    std::string applicationIdentifier;  ///< "org.xfce.mousepad", empty if it has none
    std::string className;              ///< "Mousepad"

    /// Nothing where no window manager tells it, or if the window has gone meanwhile. Two round trips.
    static std::optional<ActiveWindow> look(XcbConnection& connection, XcbAtoms& atoms);
};

} // namespace querlin
