#pragma once

namespace querlin::Compositor {

/// Whether somebody blends windows with what is behind them. Where nobody does, what is transparent is black.
/// A question to the display server; microseconds.
bool isRunning();

} // namespace querlin::Compositor
