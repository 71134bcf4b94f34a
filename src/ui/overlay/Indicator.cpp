#include "ui/overlay/Indicator.h"

#include "ui/brand/Brand.h"
#include "ui/brand/Symbol.h"

#include <QPainter>

namespace querlin {

namespace {

constexpr double largest = 1.18;
constexpr int symbolSize = 15; // Matches a 13-point letter with its side bearings.

} // namespace

Indicator::Indicator(QWidget* parent) : QWidget(parent) {
    setFixedSize(room, room);
    pulse_.setStartValue(1.0);
    pulse_.setEndValue(largest);
    pulse_.setDuration(750);
    pulse_.setEasingCurve(QEasingCurve::InOutSine);
    connect(&pulse_, &QVariantAnimation::valueChanged, this, [this] { update(); });
    connect(&pulse_, &QVariantAnimation::finished, this, [this] {
        pulse_.setDirection(pulse_.direction() == QVariantAnimation::Forward ? QVariantAnimation::Backward
                                                                             : QVariantAnimation::Forward);
        pulse_.start();
    });
}

void Indicator::show(std::string symbol, const QColor& color, bool pulses) {
    symbol_ = std::move(symbol);
    color_ = color;
    pulses_ = pulses;
    animate();
    update();
}

/// No animation while the widget is hidden.
void Indicator::animate() {
    if (!pulses_ || !isVisible()) {
        pulse_.stop();
        pulse_.setDirection(QVariantAnimation::Forward);
    } else if (pulse_.state() != QVariantAnimation::Running) {
        pulse_.start();
    }
}

void Indicator::hideEvent(QHideEvent* /*event*/) { animate(); }
void Indicator::showEvent(QShowEvent* /*event*/) { animate(); }

void Indicator::paintEvent(QPaintEvent* /*event*/) {
    const bool moves = pulse_.state() == QVariantAnimation::Running;
    const double scale = moves ? pulse_.currentValue().toDouble() : 1.0;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(QRectF(rect()).center());
    painter.scale(scale, scale);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Brand::withOpacity(color_, 0.18));
    painter.drawEllipse(QPointF(0, 0), diameter / 2.0, diameter / 2.0);
    Symbol::draw(painter, symbol_, QRectF(-symbolSize / 2.0, -symbolSize / 2.0, symbolSize, symbolSize),
                 color_);
}

} // namespace querlin
