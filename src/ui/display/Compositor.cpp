#include "ui/display/Compositor.h"

#include "ui/display/X11Display.h"

namespace querlin::Compositor {

bool isRunning() {
    auto* connection = X11Display::connection();
    if (!connection) return true; // Whatever else surfaces are drawn on, it knows transparency.
    // Its owner composes the screen (Extended Window Manager Hints, Compositing Managers).
    return X11Display::selectionOwner(connection, "_NET_WM_CM_S0") != XCB_WINDOW_NONE;
}

} // namespace querlin::Compositor
