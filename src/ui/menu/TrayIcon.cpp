#include "ui/menu/TrayIcon.h"

#include "ui/brand/Brand.h"
#include "ui/brand/BrandMark.h"
#include "ui/brand/Symbol.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <string>

#include <QIconEngine>
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

class Engine final : public QIconEngine {
public:
    Engine(std::string_view symbol, Shades shades) : symbol_(symbol), shades_(shades) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        const auto ratio = painter->device()->devicePixelRatioF();
        auto picture = draw(qRound(std::min(rect.width(), rect.height()) * ratio));
        picture.setDevicePixelRatio(ratio);
        const auto side = picture.deviceIndependentSize();
        painter->drawImage(rect.center() + QPointF(1, 1) / 2 - QPointF(side.width(), side.height()) / 2,
                           picture);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        return QPixmap::fromImage(draw(std::min(size.width(), size.height())));
    }
    /// The sizes that panels are sent.
    QList<QSize> availableSizes(QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        QList<QSize> sizes;
        for (const int side : {16, 22, 24, 32, 48}) sizes.append({side, side});
        return sizes;
    }
    QIconEngine* clone() const override { return new Engine(*this); }

private:
    /// In device pixels.
    QImage draw(int side) const {
        const double edge = std::max(0.8, side / 24.0);
        const auto outline = glyph(side, edge, shades_.edge);
        QImage picture(outline.size(), outline.format());
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        constexpr int directions = 16;
        for (int step = 0; step < directions; ++step) {
            const double angle = step * 2 * std::numbers::pi / directions;
            painter.drawImage(QPointF(std::cos(angle), std::sin(angle)) * edge, outline);
        }
        painter.drawImage(0, 0, glyph(side, edge, shades_.letters));
        return picture;
    }
    QImage glyph(int side, double inset, const QColor& color) const {
        QImage picture(side, side, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        const auto rect = QRectF(0, 0, side, side).adjusted(inset, inset, -inset, -inset);
        if (symbol_.empty()) {
            BrandMark::draw(painter, rect, color, BrandMark::SectionSign::with);
        } else {
            Symbol::draw(painter, symbol_, rect, color);
        }
        return picture;
    }

    std::string symbol_;
    Shades shades_;
};

} // namespace

QIcon make(std::string_view symbol, Appearance appearance) {
    return QIcon(new Engine(symbol, shadesFor(appearance)));
}

} // namespace querlin::TrayIcon
