#include "ui/overlay/LiveText.h"

#include "ui/brand/Brand.h"
#include "ui/brand/Theme.h"
#include "ui/overlay/ElidedLabel.h"
#include "ui/overlay/OverlayMetrics.h"

#include <QScrollBar>

namespace querlin {

LiveText::LiveText(QWidget* parent) :
    QScrollArea(parent), text_(new QLabel), scrolling_(verticalScrollBar(), "value") {
    setFixedHeight(OverlayMetrics::liveTextHeight);
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setAutoFillBackground(false);

    text_->setTextFormat(Qt::PlainText);
    text_->setWordWrap(true);
    text_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    text_->setFont(Brand::font(12));
    text_->setAccessibleName(QStringLiteral("Bisher verstanden"));
    text_->setAutoFillBackground(false);
    setWidget(text_);
    text_->setAutoFillBackground(false); // The scroll area switches it on.

    scrolling_.setDuration(120);
    scrolling_.setEasingCurve(QEasingCurve::OutCubic);
    // The range is updated once the new text is laid out.
    connect(verticalScrollBar(), &QScrollBar::rangeChanged, this, [this](int /*lowest*/, int highest) {
        scrolling_.stop();
        scrolling_.setEndValue(highest);
        scrolling_.start();
    });
    refreshColors();
}

void LiveText::setText(const QString& text) { text_->setText(text); }

void LiveText::refreshColors() {
    setTextColor(*text_, Theme::primaryText());
    const auto thumb = Brand::withOpacity(Theme::secondaryText(), 0.45).name(QColor::HexArgb);
    setStyleSheet(
        QStringLiteral("QScrollBar:vertical { width: 5px; background: transparent; }"
                       "QScrollBar::handle:vertical { background: %1; border-radius: 2px; min-height: 12px; }"
                       "QScrollBar::add-line, QScrollBar::sub-line { height: 0; }"
                       "QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }")
            .arg(thumb));
}

} // namespace querlin
