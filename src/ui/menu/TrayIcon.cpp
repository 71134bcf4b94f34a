#include "ui/menu/TrayIcon.h"

#include "ui/brand/Brand.h"
#include "ui/brand/BrandMark.h"
#include "ui/brand/DrawnIcon.h"
#include "ui/brand/Symbol.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

#include <QPainter>

namespace querlin::TrayIcon {

namespace {

struct Shades {
    QColor letters;
    QColor edge;
};
Shades shadesFor(Appearance appearance) {
    return appearance == Appearance::dark ? Shades{Qt::white, Brand::withOpacity(Brand::night, 0.8)}
                                          : Shades{Brand::night, Brand::withOpacity(Qt::white, 0.85)};
}

QImage glyph(std::string_view symbol, int side, double inset, const QColor& color) {
    QImage picture(side, side, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    const auto rect = QRectF(0, 0, side, side).adjusted(inset, inset, -inset, -inset);
    if (symbol.empty()) {
        BrandMark::draw(painter, rect, color, BrandMark::SectionSign::with);
    } else {
        Symbol::draw(painter, symbol, rect, color);
    }
    return picture;
}

QImage draw(std::string_view symbol, int side, const Shades& shades) {
    const double edge = std::max(0.8, side / 24.0);
    const auto outline = glyph(symbol, side, edge, shades.edge);
    QImage picture(outline.size(), outline.format());
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    constexpr int directions = 16;
    for (int step = 0; step < directions; ++step) {
        const double angle = step * 2 * std::numbers::pi / directions;
        painter.drawImage(QPointF(std::cos(angle), std::sin(angle)) * edge, outline);
    }
    painter.drawImage(0, 0, glyph(symbol, side, edge, shades.letters));
    return picture;
}

} // namespace

QIcon make(std::string_view symbol, Appearance appearance) {
    return drawnIcon([symbol = std::string(symbol), shades = shadesFor(appearance)](int side) {
        return draw(symbol, side, shades);
    });
}

} // namespace querlin::TrayIcon
