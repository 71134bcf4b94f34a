#include "ui/brand/AppMarkView.h"

#include "ui/brand/Brand.h"
#include "ui/brand/BrandMark.h"

#include <QPainter>

namespace querlin {

AppMarkView::AppMarkView(int size, QWidget* parent) : QWidget(parent) {
    setFixedSize(size, size);
    setAccessibleName(Brand::text(Brand::productName) + QStringLiteral(" Symbol"));
}

void AppMarkView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(rect(), BrandMark::appIcon(2 * width()));
}

} // namespace querlin
