#include "ui/overlay/OverlayView.h"

#include "ui/brand/Brand.h"
#include "ui/brand/Theme.h"
#include "ui/overlay/OverlayMetrics.h"
#include "ui/overlay/OverlayText.h"

#include <algorithm>

#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>

namespace querlin {

namespace {

constexpr int sideMargin = 16;
constexpr int spacing = 12;
constexpr int widestBadge = 132;

/// A translucent area of one colour: the background of a word, or a divider.
class Tint final : public QWidget {
public:
    Tint(QColor (*color)(), double radius) : color_(color), radius_(radius) {}

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(color_());
        painter.drawRoundedRect(rect(), radius_, radius_);
    }

private:
    QColor (*color_)();
    double radius_;
};

/// As wide as with the widest figures, so that nothing moves when they change.
int widthOfTime(const QFontMetrics& metrics, const QString& time) {
    int digit = 0;
    for (const QChar figure : QStringLiteral("0123456789"))
        digit = std::max(digit, metrics.horizontalAdvance(figure));
    const auto digits = std::ranges::count_if(time, [](QChar sign) { return sign.isDigit(); });
    return (static_cast<int>(digits) * digit) + metrics.horizontalAdvance(QLatin1Char(':')) + 1;
}

} // namespace

OverlayView::OverlayView(const DictationController& controller, const AppSettings& settings) :
    VisualEffectView(OverlayMetrics::cornerRadius), controller_(controller), settings_(settings) {
    build();
    refreshColors();
    refreshLiveText();
    subscribe();
}

QSize OverlayView::sizeHint() const {
    return {OverlayMetrics::width, layout()->heightForWidth(OverlayMetrics::width)};
}

void OverlayView::build() {
    auto* stack = new QVBoxLayout(this);
    stack->setContentsMargins(0, 0, 0, 0);
    stack->setSpacing(0);
    stack->addWidget(makeStatusRow());

    liveText_ = new LiveText;
    liveTextRoom_ = new QWidget;
    auto* divider = new Tint([] { return Brand::withOpacity(Theme::secondaryText(), 0.22); }, 0);
    divider->setFixedHeight(1);
    auto* line = new QHBoxLayout;
    line->setContentsMargins(14, 0, 14, 8);
    line->addWidget(divider);
    auto* text = new QHBoxLayout;
    text->setContentsMargins(sideMargin, 0, sideMargin, 12);
    text->addWidget(liveText_);
    auto* room = new QVBoxLayout(liveTextRoom_);
    room->setContentsMargins(0, 0, 0, 0);
    room->setSpacing(0);
    room->addLayout(line);
    room->addLayout(text);
    stack->addWidget(liveTextRoom_);
}

QWidget* OverlayView::makeStatusRow() {
    auto* row = new QWidget;
    row->setMinimumHeight(OverlayMetrics::compactHeight);
    auto* layout = new QHBoxLayout(row);
    // The indicator widget is larger than its disc.
    constexpr int around = (Indicator::room - Indicator::diameter) / 2;
    layout->setContentsMargins(sideMargin - around, 10 - around, sideMargin, 10 - around);
    layout->setSpacing(spacing);
    indicator_ = new Indicator;
    layout->addWidget(indicator_);
    layout->addSpacing(-around);

    title_ = new QLabel;
    title_->setTextFormat(Qt::PlainText);
    title_->setFont(Brand::font(13, QFont::DemiBold));
    title_->setWordWrap(true);
    subtitle_ = new ElidedLabel;
    subtitle_->setFont(Brand::font(10));
    auto* lines = new QVBoxLayout;
    lines->setSpacing(2);
    lines->addStretch();
    lines->addWidget(title_);
    lines->addWidget(subtitle_);
    lines->addStretch();
    layout->addLayout(lines, 1);

    badge_ = new Tint([] { return Brand::withOpacity(Brand::primary, 0.12); }, 5);
    badgeText_ = new ElidedLabel;
    badgeText_->setFont(Brand::font(10, QFont::Medium));
    badgeText_->setAlignment(Qt::AlignCenter);
    badgeText_->setMaximumWidth(widestBadge);
    auto* inBadge = new QHBoxLayout(badge_);
    inBadge->setContentsMargins(6, 2, 6, 2);
    inBadge->addWidget(badgeText_);
    layout->addWidget(badge_, 0, Qt::AlignVCenter);

    level_ = new LevelMeter;
    layout->addWidget(level_, 0, Qt::AlignVCenter);
    elapsed_ = new QLabel;
    elapsed_->setTextFormat(Qt::PlainText);
    elapsed_->setFont(Brand::font(11, QFont::Medium));
    elapsed_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    elapsed_->setAccessibleDescription(QStringLiteral("Dauer der Aufnahme"));
    layout->addWidget(elapsed_, 0, Qt::AlignVCenter);
    return row;
}

void OverlayView::subscribe() {
    const auto follow = [this](const auto& published, auto react) {
        subscriptions_.push_back(
            published.subscribe([this, react](const auto&) { (this->*react)(); }, FirstValue::Skip));
    };
    follow(controller_.phase(), &OverlayView::refreshLiveText);
    follow(controller_.livePartialText(), &OverlayView::refreshLiveText);
    follow(controller_.elapsedDescription(), &OverlayView::refresh);
    follow(controller_.isLongDictation(), &OverlayView::refresh);
    follow(controller_.context(), &OverlayView::refresh);
    follow(controller_.effectiveStyle(), &OverlayView::refresh);
    follow(settings_.showLevelMeter, &OverlayView::refresh);
    subscriptions_.push_back(controller_.inputLevel().subscribe(
        [this](float level) { level_->setLevel(static_cast<double>(level)); }));
}

void OverlayView::refreshLiveText() {
    const auto& text = controller_.livePartialText().get();
    const bool isShown = !text.empty() && !controller_.phase().get().is(DictationPhase::Kind::idle);
    liveTextRoom_->setVisible(isShown);
    if (isShown) liveText_->setText(Brand::text(text));
    refresh();
}

void OverlayView::refresh() {
    const auto& phase = controller_.phase().get();
    const bool isRecording = phase.is(DictationPhase::Kind::recording);
    const bool isError = phase.is(DictationPhase::Kind::error);
    const bool isLong = controller_.isLongDictation().get();

    indicator_->show(std::string(phase.symbolName()), accentColor(), isRecording);
    title_->setText(Brand::text(phase.statusText()));
    setTextColor(*title_, isError ? Brand::warning : Theme::primaryText());
    subtitle_->setText(
        Brand::text(OverlayText::secondLine({.phase = phase,
                                             .isLongDictation = isLong,
                                             .hasLiveText = !controller_.livePartialText().get().empty(),
                                             .style = controller_.effectiveStyle().get()})));
    const auto& context = controller_.context().get();
    badgeText_->setText(Brand::text(context.appName));
    badge_->setVisible(isRecording && context != DictationContext());
    level_->setVisible(isRecording && settings_.showLevelMeter.get());

    const auto time = Brand::text(controller_.elapsedDescription().get());
    elapsed_->setText(time);
    elapsed_->setFixedWidth(widthOfTime(elapsed_->fontMetrics(), time));
    setTextColor(*elapsed_, isLong ? Brand::warning : Theme::secondaryText());
    elapsed_->setVisible(isRecording);
}

void OverlayView::refreshColors() {
    setTextColor(*subtitle_, Theme::secondaryText());
    setTextColor(*badgeText_, Brand::primary);
    liveText_->refreshColors();
    refresh();
}

void OverlayView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange && !subscriptions_.empty()) refreshColors();
    VisualEffectView::changeEvent(event);
}

QColor OverlayView::accentColor() const {
    using enum DictationPhase::Kind;
    switch (controller_.phase().get().kind) {
    case error:
        return Brand::warning;
    case recording:
        return Brand::recording;
    case inserting:
        return Brand::success;
    case idle:
    case transcribing:
    case enhancing:
    case notice:
        return Brand::primary;
    }
    return Brand::primary;
}

} // namespace querlin
