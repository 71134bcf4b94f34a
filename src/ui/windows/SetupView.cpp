#include "ui/windows/SetupView.h"

#include "ui/brand/AppMarkView.h"
#include "ui/brand/Brand.h"
#include "ui/brand/Symbol.h"
#include "ui/brand/Theme.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace querlin {

namespace {

QLabel* makeLabel(const std::string& words, const QFont& font) {
    auto* label = new QLabel(Brand::text(words));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setFont(font);
    return label;
}

QWidget* makeRow(const SetupFinding& finding, qreal ratio) {
    auto* row = new QWidget;
    row->setAccessibleName(Brand::text(finding.name + ": " + finding.state));
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(12);
    auto* sign = new QLabel;
    sign->setPixmap(finding.isFine ? Symbol::pixmap("checkmark", 18, Brand::success, ratio)
                                   : Symbol::pixmap("exclamationmark.triangle", 18, Brand::warning, ratio));
    sign->setAccessibleName(finding.isFine ? QStringLiteral("in Ordnung") : QStringLiteral("fehlt"));
    layout->addWidget(sign, 0, Qt::AlignTop);
    auto* lines = new QVBoxLayout;
    lines->setSpacing(2);
    lines->addWidget(makeLabel(finding.name, Brand::font(13, QFont::DemiBold)));
    auto* state = makeLabel(finding.state, Brand::font(12));
    state->setForegroundRole(QPalette::PlaceholderText);
    lines->addWidget(state);
    layout->addLayout(lines, 1);
    return row;
}

} // namespace

SetupView::SetupView(std::function<std::vector<SetupFinding>()> look, std::function<void()> onFinish) :
    look_(std::move(look)), rows_(new QVBoxLayout) {
    auto* stack = new QVBoxLayout(this);
    stack->setContentsMargins(48, 40, 48, Brand::Spacing::section);
    stack->setSpacing(Brand::Spacing::normal);
    stack->addWidget(new AppMarkView(72), 0, Qt::AlignHCenter);
    auto* heading = makeLabel("Willkommen bei Querlin", Brand::font(22, QFont::DemiBold));
    heading->setAlignment(Qt::AlignHCenter);
    stack->addWidget(heading);
    auto* words = makeLabel(
        "Taste halten, sprechen, loslassen – der Text steht an der Schreibmarke. Alles Gesprochene bleibt "
        "auf diesem Rechner.",
        Brand::font(13));
    words->setAlignment(Qt::AlignHCenter);
    stack->addWidget(words);
    stack->addSpacing(Brand::Spacing::tight);
    stack->addWidget(makeLabel("Was Querlin braucht", Brand::font(13, QFont::DemiBold)));
    rows_->setSpacing(Brand::Spacing::normal);
    stack->addLayout(rows_);
    stack->addStretch();
    auto* done = new QPushButton(QStringLiteral("Fertig"));
    done->setDefault(true);
    done->setAutoDefault(true);
    connect(done, &QPushButton::clicked, this, [finish = std::move(onFinish)] { finish(); });
    stack->addWidget(done, 0, Qt::AlignRight);
    done->setFocus();

    timer_.setInterval(std::chrono::seconds(2));
    connect(&timer_, &QTimer::timeout, this, [this] { refresh(); });
}

void SetupView::showEvent(QShowEvent* /*event*/) {
    refresh();
    timer_.start();
}

void SetupView::hideEvent(QHideEvent* /*event*/) { timer_.stop(); }

void SetupView::changeEvent(QEvent* event) {
    // Later: the rows are about to receive the new palette and must not be destroyed yet.
    if (event->type() == QEvent::PaletteChange && rows_) QTimer::singleShot(0, this, [this] { rebuild(); });
    QWidget::changeEvent(event);
}

void SetupView::refresh() {
    auto findings = look_();
    if (std::exchange(findings_, std::move(findings)) != findings_) rebuild();
}

void SetupView::rebuild() {
    while (auto* item = rows_->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    for (const auto& finding : findings_) rows_->addWidget(makeRow(finding, devicePixelRatioF()));
}

} // namespace querlin
