#include "ui/overlay/FloatingPanel.h"

#include "ui/overlay/OverlayMetrics.h"

#include <algorithm>

#include <QBitmap>
#include <QCursor>
#include <QEvent>
#include <QGuiApplication>
#include <QLayout>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>
#include <QVBoxLayout>

namespace querlin {

namespace {

constexpr int shadowReach = 28;
constexpr int shadowOffset = 6;

Qt::WindowFlags flagsFor(FloatingPanel::Behaviour behaviour) {
    const Qt::WindowFlags common = Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint;
    if (behaviour == FloatingPanel::Behaviour::asks) return common;
    return common | Qt::WindowDoesNotAcceptFocus | Qt::WindowTransparentForInput |
           Qt::X11BypassWindowManagerHint;
}

/// Where the mouse is; otherwise where most of the work is.
QScreen* chosenScreen() {
    const auto screens = QGuiApplication::screens();
    const auto mouse = QCursor::pos();
    const auto under = std::ranges::find_if(
        screens, [mouse](QScreen* screen) { return screen->geometry().contains(mouse); });
    if (under != screens.end()) return *under;
    if (auto* primary = QGuiApplication::primaryScreen()) return primary;
    return screens.isEmpty() ? nullptr : screens.first();
}

/// A soft shadow of a rounded rectangle: layers of little weight, each a little larger, close together at the
/// edge.
void paintShadow(QPainter& painter, const QRectF& shape, double radius) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, 2));
    constexpr int layers = 20;
    for (int layer = 1; layer <= layers; ++layer) {
        const double share = static_cast<double>(layer) / layers;
        const double reach = (shadowReach - shadowOffset) * share * share;
        painter.drawRoundedRect(shape.adjusted(-reach, -reach, reach, reach), radius + reach, radius + reach);
    }
}

} // namespace

FloatingPanel::FloatingPanel(VisualEffectView* content, Behaviour behaviour, const QString& title,
                             Surfaces& surfaces) :
    QWidget(nullptr, flagsFor(behaviour)), surfaces_(surfaces), content_(content) {
    setWindowTitle(title);
    setAccessibleName(title);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_QuitOnClose, false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(content);
}

void FloatingPanel::positionAtBottomCenter() {
    const auto* screen = chosenScreen();
    if (!screen) return;
    screenArea_ = screen->availableGeometry();
    adaptToCompositor();
    place();
}

void FloatingPanel::orderFront() {
    show();
    raise();
}

bool FloatingPanel::event(QEvent* event) {
    const bool handled = QWidget::event(event);
    if (event->type() == QEvent::LayoutRequest && !screenArea_.isNull()) place();
    if (event->type() == QEvent::PaletteChange) update();
    return handled;
}

/// The content's lower edge stays where it is.
void FloatingPanel::place() {
    layout()->activate();
    const auto wish = content_->sizeHint();
    const int height = content_->hasHeightForWidth() ? content_->heightForWidth(wish.width()) : wish.height();
    const QRect shape(screenArea_.center().x() + 1 - (wish.width() / 2),
                      screenArea_.bottom() + 1 - OverlayMetrics::bottomInset - height, wish.width(), height);
    setGeometry(shape.adjusted(-margin_, -margin_, margin_, margin_));
    if (margin_ > 0) {
        clearMask();
    } else {
        QBitmap form(shape.size());
        form.clear();
        QPainter painter(&form);
        painter.setBrush(Qt::color1);
        painter.setPen(Qt::NoPen);
        painter.drawRoundedRect(form.rect(), content_->cornerRadius(), content_->cornerRadius());
        painter.end();
        setMask(form);
    }
}

void FloatingPanel::adaptToCompositor() {
    const bool composed = surfaces_.areBlended();
    margin_ = composed ? shadowReach : 0;
    layout()->setContentsMargins(margin_, margin_, margin_, margin_);
    content_->setTranslucent(composed);
}

void FloatingPanel::paintEvent(QPaintEvent* /*event*/) {
    if (margin_ > 0) QPainter(this).drawPixmap(0, 0, shadow());
}

/// Painted once for each size.
const QPixmap& FloatingPanel::shadow() {
    const auto ratio = devicePixelRatioF();
    if (shadow_.size() != size() * ratio) {
        shadow_ = QPixmap(size() * ratio);
        shadow_.setDevicePixelRatio(ratio);
        shadow_.fill(Qt::transparent);
        QPainter painter(&shadow_);
        const QRectF shape = QRectF(rect()).adjusted(margin_, margin_, -margin_, -margin_);
        QPainterPath outside;
        outside.addRect(rect());
        QPainterPath inside;
        inside.addRoundedRect(shape, content_->cornerRadius(), content_->cornerRadius());
        painter.setClipPath(outside.subtracted(inside)); // The surface lets it shine through otherwise.
        paintShadow(painter, shape.translated(0, shadowOffset), content_->cornerRadius());
    }
    return shadow_;
}

} // namespace querlin
