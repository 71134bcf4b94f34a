#include "ui/overlay/VisualEffectView.h"

#include "ui/brand/Brand.h"
#include "ui/brand/Theme.h"

#include <QPainter>

namespace querlin {

VisualEffectView::VisualEffectView(double cornerRadius, QWidget* parent) :
    QWidget(parent), cornerRadius_(cornerRadius) {}

void VisualEffectView::setTranslucent(bool translucent) {
    if (std::exchange(isTranslucent_, translucent) != translucent) update();
}

void VisualEffectView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    auto material = Theme::material();
    if (isTranslucent_) {
        painter.setBrush(material);
        painter.drawRoundedRect(rect(), cornerRadius_, cornerRadius_);
    } else { // The window is masked to its shape; a translucent edge would come out black.
        material.setAlpha(255);
        painter.fillRect(rect(), material);
    }
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Brand::withOpacity(Brand::primary, 0.22), 1));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius_ - 0.5,
                            cornerRadius_ - 0.5);
}

} // namespace querlin
