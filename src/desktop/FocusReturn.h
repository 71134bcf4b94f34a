#pragma once

#include "foundation/Task.h"

namespace querlin {

/// Gives the keyboard back to the application that had it before a window of ours. Main thread.
class FocusReturn {
public:
    virtual ~FocusReturn() = default;

    /// Brings the last window of another application to the front, and waits for that: a second at most.
    /// False if there is none, or it doesn't get the focus.
    virtual Task<bool> giveBack() = 0;
};

} // namespace querlin
