#include "ui/overlay/LevelMeter.h"

#include "ui/brand/Brand.h"
#include "ui/brand/Theme.h"

#include <algorithm>

#include <QAccessibleWidget>
#include <QPainter>

namespace querlin {

namespace {

constexpr int barWidth = 46;
constexpr int barHeight = 4;
constexpr double narrowestFill = 2;

class AccessibleMeter final : public QAccessibleWidget {
public:
    explicit AccessibleMeter(LevelMeter* meter) :
        QAccessibleWidget(meter, QAccessible::ProgressBar), meter_(meter) {}

    QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Value) return QStringLiteral("%1 Prozent").arg(meter_->percent());
        return QAccessibleWidget::text(kind);
    }

private:
    LevelMeter* meter_;
};

QAccessibleInterface* makeAccessible(const QString& /*className*/, QObject* object) {
    auto* meter = dynamic_cast<LevelMeter*>(object);
    return meter ? new AccessibleMeter(meter) : nullptr; // The toolkit takes ownership.
}

} // namespace

LevelMeter::LevelMeter(QWidget* parent) : QWidget(parent) {
    [[maybe_unused]] static const bool installed = (QAccessible::installFactory(makeAccessible), true);
    setFixedSize(barWidth, barHeight);
    setAccessibleName(QStringLiteral("Eingangspegel"));
    movement_.setDuration(60);
    movement_.setStartValue(0.0);
    movement_.setEndValue(0.0);
    connect(&movement_, &QVariantAnimation::valueChanged, this, [this] { update(); });
}

void LevelMeter::setLevel(double level) {
    level_ = std::clamp(level, 0.0, 1.0);
    const double shown = movement_.currentValue().toDouble();
    movement_.stop();
    movement_.setStartValue(shown);
    movement_.setEndValue(level_);
    if (isVisible()) {
        movement_.start();
    } else {
        movement_.setCurrentTime(movement_.duration());
    }
    QAccessibleValueChangeEvent changed(this, percent());
    QAccessible::updateAccessibility(&changed);
}

int LevelMeter::percent() const { return static_cast<int>(level_ * 100); }

void LevelMeter::paintEvent(QPaintEvent* /*event*/) {
    const auto fill = std::max(narrowestFill, movement_.currentValue().toDouble() * barWidth);
    constexpr double radius = barHeight / 2.0;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Brand::withOpacity(Theme::secondaryText(), 0.18));
    painter.drawRoundedRect(rect(), radius, radius);
    painter.setBrush(Brand::recording);
    painter.drawRoundedRect(QRectF(0, 0, fill, barHeight), std::min(radius, fill / 2), radius);
}

} // namespace querlin
