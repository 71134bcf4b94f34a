#include "ui/brand/BrandMark.h"

#include "ui/brand/Brand.h"
#include "ui/brand/DrawnIcon.h"

#include <cmath>
#include <numbers>

#include <QLinearGradient>
#include <QPainter>

namespace querlin::BrandMark {

namespace {

/// From this size on the icon has room for the section sign.
constexpr int smallestWithSectionSign = 48;

QImage empty(double width, double height, qreal devicePixelRatio = 1) {
    QImage image(qRound(width * devicePixelRatio), qRound(height * devicePixelRatio),
                 QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(devicePixelRatio);
    image.fill(Qt::transparent);
    return image;
}

/// Two arcs, one the other rotated by 180°, with the stroke of a semibold letter, on a square of 100. A path
/// instead of a letter: it looks the same on every desktop, and the tray icon needs no fonts to be loaded.
void drawSectionSign(QPainter& painter, QPointF centre, double size, const QColor& color) {
    QPainterPath bow;
    bow.moveTo(14.5, -33.5);
    bow.cubicTo(10, -35.5, 5, -36.3, 0, -36.3);
    bow.cubicTo(-11.5, -36.3, -17.5, -31.5, -17.5, -25.5);
    bow.cubicTo(-17.5, -12.5, 19, -12.5, 19, 4.5);
    bow.cubicTo(19, 10.5, 15, 15, 9, 17);
    auto sign = bow;
    sign.addPath(QTransform().rotate(180).map(bow));
    const double scale = size / 100;
    const auto place = QTransform::fromTranslate(centre.x(), centre.y()).scale(scale, scale);
    painter.strokePath(place.map(sign), QPen(color, 11.5 * scale, Qt::SolidLine, Qt::RoundCap));
}

} // namespace

void draw(QPainter& painter, const QRectF& rect, const QColor& color, SectionSign sign) {
    const double width = rect.width();
    const double height = rect.height();
    // Heights are measured from the lower edge.
    const auto at = [&rect](double x, double y) { return QPointF(rect.left() + x, rect.bottom() - y); };
    const double cx = (sign == SectionSign::with ? 0.355 : 0.5) * width;

    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const double capsule = 0.225 * width;
    QPainterPath body;
    body.addRoundedRect(
        QRectF(at(cx - (capsule / 2), (0.455 + 0.445) * height), QSizeF(capsule, 0.445 * height)),
        capsule / 2, capsule / 2);
    painter.fillPath(body, color);

    QPainterPath stand;
    const double radius = 0.185 * width;
    const auto bow = at(cx, 0.545 * height);
    stand.arcMoveTo(QRectF(bow - QPointF(radius, radius), QSizeF(2 * radius, 2 * radius)), 180);
    stand.arcTo(QRectF(bow - QPointF(radius, radius), QSizeF(2 * radius, 2 * radius)), 180, 180);
    stand.moveTo(at(cx, 0.36 * height));
    stand.lineTo(at(cx, 0.135 * height));
    stand.moveTo(at(cx - (0.115 * width), 0.135 * height));
    stand.lineTo(at(cx + (0.115 * width), 0.135 * height));
    painter.strokePath(stand, QPen(color, 0.075 * width, Qt::SolidLine, Qt::RoundCap));

    if (sign == SectionSign::with) {
        drawSectionSign(painter, at(0.775 * width, 0.47 * height), 0.54 * height, color);
    }
    painter.restore();
}

QImage statusItemImage(int height, const QColor& color, qreal devicePixelRatio) {
    const double width = height * 1.15;
    auto image = empty(width, height, devicePixelRatio);
    QPainter painter(&image);
    draw(painter,
         QRectF(0, 0, width, height).adjusted(0.02 * width, 0.06 * height, -0.02 * width, -0.06 * height),
         color, SectionSign::with);
    return image;
}

QPainterPath squirclePath(const QRectF& rect) {
    const auto bent = [](double value) { return std::copysign(std::pow(std::abs(value), 0.4), value); };
    QPainterPath path;
    for (int degree = 0; degree < 360; ++degree) {
        const double t = degree * std::numbers::pi / 180;
        const QPointF point = rect.center() + QPointF(rect.width() / 2 * bent(std::cos(t)),
                                                      rect.height() / 2 * bent(std::sin(t)));
        if (degree == 0) {
            path.moveTo(point);
        } else {
            path.lineTo(point);
        }
    }
    path.closeSubpath();
    return path;
}

void drawAppIcon(QPainter& painter, double size, SectionSign sign) {
    const double inset = 0.098 * size;
    const auto square = QRectF(0, 0, size, size).adjusted(inset, inset, -inset, -inset);
    QLinearGradient blue(square.topLeft(), square.bottomLeft());
    blue.setColorAt(0, QColor(0x55, 0xA3, 0xE2));
    blue.setColorAt(1, QColor(0x2F, 0x7C, 0xBD));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(squirclePath(square), blue);
    const double side = square.width() * (sign == SectionSign::with ? 0.6 : 0.5);
    draw(painter, QRectF(square.center() - QPointF(side / 2, side / 2), QSizeF(side, side)), Qt::white, sign);
}

QImage appIcon(int pixelSize) {
    auto image = empty(pixelSize, pixelSize);
    QPainter painter(&image);
    drawAppIcon(painter, pixelSize,
                pixelSize >= smallestWithSectionSign ? SectionSign::with : SectionSign::without);
    return image;
}

QImage glyphImage(int pixelSize, const QColor& color) {
    auto image = empty(pixelSize, pixelSize);
    QPainter painter(&image);
    draw(painter, QRectF(0, 0, pixelSize, pixelSize), color, SectionSign::with);
    return image;
}

QIcon windowIcon() { return drawnIcon(appIcon); }

} // namespace querlin::BrandMark
