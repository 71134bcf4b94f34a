#pragma once

#include <functional>

#include <QIcon>
#include <QImage>

namespace querlin {

/// An icon that is drawn on demand, at the requested size: it costs nothing until it is shown. `draw` makes
/// the square image; `side` in device pixels.
QIcon drawnIcon(std::function<QImage(int side)> draw);

} // namespace querlin
