#pragma once

#include <span>
#include <string_view>

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QRectF>

class QPainter;

/// The pictures that stand for phases and commands, by their names ("mic.fill"): our own drawings, sharp at
/// any size, in any one colour.
namespace querlin::Symbol {

/// All names there are.
std::span<const std::string_view> names();

/// Draws a symbol centred into the rectangle, as large as fits. A name that isn't known draws nothing.
void draw(QPainter& painter, std::string_view name, const QRectF& rect, const QColor& color);

/// The symbol on nothing, `size` logical pixels square.
QPixmap pixmap(std::string_view name, int size, const QColor& color, qreal devicePixelRatio = 1);

/// For buttons and menus; follows the text colour of the palette at the time of the call.
QIcon icon(std::string_view name);
QIcon icon(std::string_view name, const QColor& color);

} // namespace querlin::Symbol
