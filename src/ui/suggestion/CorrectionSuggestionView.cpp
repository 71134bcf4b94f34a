#include "ui/suggestion/CorrectionSuggestionView.h"

#include "ui/brand/Brand.h"
#include "ui/brand/Symbol.h"
#include "ui/brand/Theme.h"
#include "ui/overlay/ElidedLabel.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace querlin {

namespace {

constexpr int panelWidth = 440;

/// A symbol whose colour follows the theme.
class SymbolView final : public QWidget {
public:
    SymbolView(std::string_view name, int size, QColor (*color)()) : name_(name), color_(color) {
        setFixedSize(size, size);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        Symbol::draw(painter, name_, rect(), color_());
    }

private:
    std::string_view name_;
    QColor (*color_)();
};

QLabel* makeWord(const std::string& word) {
    auto* label = new ElidedLabel;
    label->setText(Brand::text(word));
    label->setFont(Brand::font(13));
    return label;
}

QHBoxLayout* makeChange(const CorrectionSuggestion& suggestion) {
    auto* former = makeWord(suggestion.recognized);
    setTextColor(*former, Theme::secondaryText());
    auto* row = new QHBoxLayout;
    row->setSpacing(Brand::Spacing::tight);
    row->addStretch();
    row->addWidget(former);
    row->addWidget(new SymbolView("arrow.right", 13, Theme::secondaryText));
    row->addWidget(makeWord(suggestion.corrected));
    row->addStretch();
    return row;
}

} // namespace

CorrectionSuggestionView::CorrectionSuggestionView(const CorrectionSuggestion& suggestion,
                                                   std::function<void()> onAccept,
                                                   std::function<void()> onDismiss) :
    VisualEffectView(Brand::Radius::panel), onDismiss_(std::move(onDismiss)) {
    auto* stack = new QVBoxLayout(this);
    stack->setContentsMargins(16, 12, 16, 12);
    stack->setSpacing(Brand::Spacing::tight);
    stack->addWidget(new SymbolView("character.book.closed", 22, [] { return Brand::primary; }), 0,
                     Qt::AlignHCenter);

    auto* heading = new QLabel(QStringLiteral("Ins Wörterbuch übernehmen?"));
    heading->setFont(Brand::font(12, QFont::DemiBold));
    stack->addWidget(heading, 0, Qt::AlignHCenter);
    stack->addLayout(makeChange(suggestion));

    auto* no = new QPushButton(QStringLiteral("Nein"));
    auto* yes = new QPushButton(QStringLiteral("Übernehmen"));
    yes->setDefault(true);
    yes->setAccessibleDescription(
        QStringLiteral("„%1“ ins Wörterbuch übernehmen").arg(Brand::text(suggestion.corrected)));
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(no);
    buttons->addWidget(yes);
    buttons->addStretch();
    stack->addLayout(buttons);
    connect(no, &QPushButton::clicked, this, [this] { onDismiss_(); });
    connect(yes, &QPushButton::clicked, this, [accept = std::move(onAccept)] { accept(); });
}

QSize CorrectionSuggestionView::sizeHint() const {
    return {panelWidth, VisualEffectView::sizeHint().height()};
}

void CorrectionSuggestionView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        onDismiss_();
    } else {
        VisualEffectView::keyPressEvent(event);
    }
}

} // namespace querlin
