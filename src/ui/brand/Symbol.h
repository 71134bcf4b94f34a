#pragma once

#include <span>
#include <string_view>

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QRectF>

class QPainter;

/// Symbols for phases and commands, by name ("mic.fill"): vector drawings in a single colour.
namespace querlin::Symbol {

/// The names of all symbols.
std::span<const std::string_view> names();

/// Draws a symbol centred in the rectangle, as large as fits. An unknown name draws nothing.
void draw(QPainter& painter, std::string_view name, const QRectF& rect, const QColor& color);

/// The symbol on a transparent background, `size` logical pixels square.
QPixmap pixmap(std::string_view name, int size, const QColor& color, qreal devicePixelRatio = 1);

/// For buttons and menus; follows the text colour of the palette at the time of the call.
QIcon icon(std::string_view name);
QIcon icon(std::string_view name, const QColor& color);

} // namespace querlin::Symbol
