#include "ui/lookup/EmptyPane.h"

#include "ui/brand/Brand.h"
#include "ui/brand/Symbol.h"
#include "ui/brand/Theme.h"

#include <QPainter>
#include <QVBoxLayout>

namespace querlin {

namespace {

constexpr int columnWidth = 420;

class BookView final : public QWidget {
public:
    BookView() { setFixedSize(44, 44); }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        Symbol::draw(painter, "text.book.closed", rect(), Brand::withOpacity(Theme::secondaryText(), 0.8));
    }
};

QLabel* makeLabel(const QFont& font, const QString& text = {}) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setFont(font);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

/// The lines as a column.
QWidget* makeLines(const std::vector<std::string>& lines) {
    auto* column = new QWidget;
    auto* stack = new QVBoxLayout(column);
    stack->setContentsMargins(0, 0, Brand::Spacing::tight, 0);
    stack->setSpacing(5);
    for (const auto& line : lines) {
        auto* label = makeLabel(Brand::font(12), Brand::text(line));
        label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
        stack->addWidget(label);
    }
    stack->addStretch();
    return column;
}

QScrollArea* makeScrollArea() {
    auto* area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setFixedWidth(columnWidth);
    area->setAccessibleName(QStringLiteral("Stand der Gesetze"));
    return area;
}

} // namespace

EmptyPane::EmptyPane(const std::function<void()>& onLoad) :
    summary_(makeScrollArea()),
    progressText_(makeLabel(Brand::font(13))),
    progressBar_(new QProgressBar),
    load_(new QPushButton) {
    auto* stack = new QVBoxLayout(this);
    stack->setContentsMargins(Brand::Spacing::normal, 56, Brand::Spacing::normal, Brand::Spacing::normal);
    stack->setSpacing(Brand::Spacing::normal);
    stack->addWidget(new BookView, 0, Qt::AlignHCenter);
    stack->addWidget(makeLabel(Brand::font(15, QFont::Medium), QStringLiteral("Paragraph auswählen")));
    makeProgress(onLoad);
    stack->addWidget(progressBar_, 0, Qt::AlignHCenter);
    stack->addWidget(progressText_, 0, Qt::AlignHCenter);
    stack->addWidget(load_, 0, Qt::AlignHCenter);
    auto* column = new QHBoxLayout;
    column->addWidget(summary_);
    stack->addLayout(column, 1);
    stack->addStretch();
    setProgress(std::nullopt);
}

void EmptyPane::makeProgress(const std::function<void()>& onLoad) {
    progressText_->setFixedWidth(columnWidth);
    progressBar_->setTextVisible(false);
    progressBar_->setFixedSize(260, 6);
    progressBar_->setAccessibleName(QStringLiteral("Fortschritt beim Laden der Gesetze"));
    load_->setText(QStringLiteral("Gesetze laden"));
    load_->setMinimumHeight(28);
    connect(load_, &QPushButton::clicked, this, [onLoad] { onLoad(); });
}

void EmptyPane::setSummary(const std::vector<std::string>& lines) { summary_->setWidget(makeLines(lines)); }

void EmptyPane::setProgress(const std::optional<CorpusProgress>& progress) {
    progressText_->setVisible(progress.has_value());
    progressBar_->setVisible(progress && progress->isUnderWay);
    load_->setVisible(progress && !progress->isUnderWay);
    summary_->setVisible(!progress);
    if (!progress) return;
    progressText_->setText(Brand::text(progress->text));
    progressBar_->setRange(0, progress->share ? 1000 : 0);
    if (progress->share) progressBar_->setValue(static_cast<int>(*progress->share * 1000));
}

} // namespace querlin
