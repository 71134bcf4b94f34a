#include "ui/lookup/TwoPanes.h"

#include "ui/brand/Brand.h"
#include "ui/brand/Theme.h"

#include <QPaintEvent>
#include <QPainter>
#include <QSplitterHandle>

namespace querlin {

namespace {

class Line final : public QSplitterHandle {
public:
    using QSplitterHandle::QSplitterHandle;

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.fillRect(contentsRect(), Brand::withOpacity(Theme::secondaryText(), 0.28));
    }
};

} // namespace

TwoPanes::TwoPanes(QWidget* left, QWidget* right, int leftWidth) {
    setChildrenCollapsible(false);
    setHandleWidth(1); // The toolkit widens the area that the mouse can grab.
    addWidget(left);
    addWidget(right);
    setStretchFactor(0, 0);
    setStretchFactor(1, 1);
    setSizes({leftWidth, leftWidth * 2});
}

QSplitterHandle* TwoPanes::createHandle() { return new Line(orientation(), this); }

} // namespace querlin
