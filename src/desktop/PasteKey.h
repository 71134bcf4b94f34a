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
    /// Waits until no modifier key is held, which would make another shortcut of it, and presses and releases
    /// the shortcut. False if keys can't be pressed here.
    virtual Task<bool> press(PasteShortcut shortcut) = 0;
};

} // namespace querlin
