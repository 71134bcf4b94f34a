#pragma once

#include <cstdint>

#include <QColor>
#include <QIcon>
#include <QImage>
#include <QPainterPath>
#include <QRectF>

class QPainter;

/// The program's mark: a microphone, usually with a section sign beside it. Vector shapes in any colour.
namespace querlin::BrandMark {

enum class SectionSign : std::uint8_t { without, with };

void draw(QPainter& painter, const QRectF& rect, const QColor& color, SectionSign sectionSign);

/// The mark in the proportions of a tray, `height` · 1.15 wide. Trays don't recolour icons, so the caller
/// chooses the colour.
QImage statusItemImage(int height, const QColor& color, qreal devicePixelRatio = 1);

/// A superellipse of exponent 5.
QPainterPath squirclePath(const QRectF& rect);

/// The program's icon, filling the square.
void drawAppIcon(QPainter& painter, double size, SectionSign sectionSign);
/// The icon at this size; from 48 pixels on with the section sign.
QImage appIcon(int pixelSize);

/// The mark with the section sign, filling the image.
QImage glyphImage(int pixelSize, const QColor& color);

/// The icon, drawn at each size on demand.
QIcon windowIcon();

} // namespace querlin::BrandMark
