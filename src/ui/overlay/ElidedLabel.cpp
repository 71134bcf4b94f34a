#include "ui/overlay/ElidedLabel.h"

#include <QPainter>

namespace querlin {

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent) { setTextFormat(Qt::PlainText); }

QSize ElidedLabel::minimumSizeHint() const {
    return {fontMetrics().horizontalAdvance(QChar(0x2026)), QLabel::minimumSizeHint().height()};
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const auto room = contentsRect();
    painter.drawText(room, static_cast<int>(alignment()),
                     fontMetrics().elidedText(text(), Qt::ElideRight, room.width()));
}

void setTextColor(QLabel& label, const QColor& color) {
    auto palette = label.palette();
    if (palette.color(QPalette::WindowText) == color) return;
    palette.setColor(QPalette::WindowText, color);
    label.setPalette(palette);
}

} // namespace querlin
