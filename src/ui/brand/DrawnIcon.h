#pragma once

#include <functional>

#include <QIcon>
#include <QImage>

namespace querlin {

/// An icon that is drawn when and in the size that somebody asks for it: so it costs nothing until it is
/// seen. `draw` makes the square picture of so many device pixels.
QIcon drawnIcon(std::function<QImage(int side)> draw);

} // namespace querlin
