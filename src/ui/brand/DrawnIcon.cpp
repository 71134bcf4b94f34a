#include "ui/brand/DrawnIcon.h"

#include <algorithm>
#include <utility>

#include <QIconEngine>
#include <QPainter>

namespace querlin {

namespace {

class Engine final : public QIconEngine {
public:
    explicit Engine(std::function<QImage(int)> draw) : draw_(std::move(draw)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        const auto ratio = painter->device()->devicePixelRatioF();
        auto picture = draw_(qRound(std::min(rect.width(), rect.height()) * ratio));
        picture.setDevicePixelRatio(ratio);
        const auto side = picture.deviceIndependentSize();
        painter->drawImage(rect.center() + QPointF(1, 1) / 2 - QPointF(side.width(), side.height()) / 2,
                           picture);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        return QPixmap::fromImage(draw_(std::min(size.width(), size.height())));
    }
    /// The sizes that panels and window managers are given.
    QList<QSize> availableSizes(QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        QList<QSize> sizes;
        for (const int side : {16, 22, 24, 32, 48, 64}) sizes.append({side, side});
        return sizes;
    }
    QIconEngine* clone() const override { return new Engine(*this); }

private:
    std::function<QImage(int)> draw_;
};

} // namespace

QIcon drawnIcon(std::function<QImage(int side)> draw) { return QIcon(new Engine(std::move(draw))); }

} // namespace querlin
