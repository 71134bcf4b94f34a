#pragma once

#include <cstdint>

namespace querlin {

/// What the program's own windows need of the display server and a toolkit doesn't offer. Main thread.
class Surfaces {
public:
    /// The number that the toolkit has for a window.
    using WindowNumber = std::uintptr_t;

    virtual ~Surfaces() = default;
    /// Whether windows are blended with what is behind them. Where they aren't, what is transparent is black.
    virtual bool areBlended() = 0;
    /// Gives a window of ours the keyboard, because the user wishes it: window managers hold programs without
    /// a window for ones that push to the front by themselves.
    virtual void activate(WindowNumber window) = 0;
};

} // namespace querlin
