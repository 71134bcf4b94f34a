#include "ui/lookup/EmptyPane.h"

#include "ui/brand/Brand.h"
#include "ui/brand/Symbol.h"
#include "ui/brand/Theme.h"

#include <QPainter>
#include <QScrollArea>
#include <QVBoxLayout>

#include <fmt/ranges.h>

namespace querlin {

namespace {

class BookView final : public QWidget {
public:
    BookView() { setFixedSize(44, 44); }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        Symbol::draw(painter, "text.book.closed", rect(), Brand::withOpacity(Theme::secondaryText(), 0.8));
    }
};

QLabel* makeLabel(const QFont& font) {
    auto* label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    label->setFont(font);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

} // namespace

EmptyPane::EmptyPane() :
    summary_(makeLabel(Brand::font(11))), progressText_(makeLabel(Brand::font(12))), progressBar_(new QProgressBar) {
    auto* stack = new QVBoxLayout(this);
    stack->setContentsMargins(Brand::Spacing::wide, 56, Brand::Spacing::wide, Brand::Spacing::normal);
    stack->setSpacing(Brand::Spacing::normal);
    stack->addWidget(new BookView, 0, Qt::AlignHCenter);
    auto* caption = makeLabel(Brand::font(15, QFont::Medium));
    caption->setText(QStringLiteral("Paragraph auswählen"));
    stack->addWidget(caption);

    progressBar_->setTextVisible(false);
    progressBar_->setFixedSize(260, 6);
    progressBar_->setAccessibleName(QStringLiteral("Fortschritt beim Laden der Gesetze"));
    stack->addWidget(progressBar_, 0, Qt::AlignHCenter);
    stack->addWidget(progressText_);

    summary_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    summary_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setWidget(summary_);
    area->viewport()->setAutoFillBackground(false);
    summary_->setAutoFillBackground(false);
    area->setAccessibleName(QStringLiteral("Stand der Gesetze"));
    stack->addWidget(area, 1);
    setProgress(std::nullopt);
}

void EmptyPane::setSummary(const std::vector<std::string>& lines) {
    summary_->setText(Brand::text(fmt::format("{}", fmt::join(lines, "\n"))));
}

void EmptyPane::setProgress(const std::optional<CorpusProgress>& progress) {
    progressText_->setVisible(progress.has_value());
    progressBar_->setVisible(progress && progress->isUnderWay);
    summary_->setVisible(!progress);
    if (!progress) return;
    progressText_->setText(Brand::text(progress->text));
    progressBar_->setRange(0, progress->share ? 1000 : 0);
    if (progress->share) progressBar_->setValue(static_cast<int>(*progress->share * 1000));
}

} // namespace querlin
