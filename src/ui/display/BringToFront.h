#pragma once

#include "desktop/Surfaces.h"

class QWidget;

namespace querlin {

/// Shows a window, before all others and with the keyboard: only ever on the user's wish.
void bringToFront(QWidget& window, Surfaces& surfaces);

/// The place in the middle of the screen with the mouse, for a window that is yet to be shown.
void centre(QWidget& window);

} // namespace querlin
