#pragma once

#include "foundation/Task.h"

#include <cstdint>

namespace querlin {

/// What pastes in an application.
enum class PasteShortcut : std::uint8_t {
    standard,
    terminal ///< where the standard one means something else
};

/// Presses keys in the user's place. Main thread.
class PasteKey {
public:
    virtual ~PasteKey() = default;
    /// Waits until no modifier key is held, which would make another shortcut of it; a second at most.
    virtual Task<> awaitFreeKeyboard() = 0;
    /// Presses and releases the shortcut at once. False if that was not possible: nothing was pressed then,
    /// as far as anybody knows.
    virtual Task<bool> press(PasteShortcut shortcut) = 0;
};

} // namespace querlin
