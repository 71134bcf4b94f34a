#pragma once

class QWidget;

namespace querlin {

/// Shows a window, before all others and with the keyboard: only ever on the user's wish. Window managers
/// take programs without a window for ones that push to the front by themselves, so they are told that it is
/// a wish.
void bringToFront(QWidget& window);

/// The place in the middle of the screen with the mouse, for a window that is yet to be shown.
void centre(QWidget& window);

} // namespace querlin
