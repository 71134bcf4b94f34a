#include "ui/lookup/SectionPane.h"

#include "ui/brand/Brand.h"
#include "ui/brand/Symbol.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace querlin {

namespace {

QLabel* makeLabel(const QFont& font, QPalette::ColorRole color) {
    auto* label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    label->setFont(font);
    label->setWordWrap(true);
    label->setForegroundRole(color);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

QPushButton* makeButton(const std::function<void()>& act, const QString& text, const QString& key,
                        const QString& what) {
    auto* button = new QPushButton(text);
    button->setAutoDefault(false);
    button->setMinimumHeight(28);
    const QKeySequence sequence(key);
    button->setShortcut(sequence);
    button->setToolTip(what + QStringLiteral(" (") + sequence.toString(QKeySequence::NativeText) +
                       QStringLiteral(")"));
    QObject::connect(button, &QPushButton::clicked, button, [act] { act(); });
    return button;
}

} // namespace

SectionPane::SectionPane(const Actions& actions) :
    citation_(makeLabel(Brand::font(18, QFont::DemiBold), QPalette::WindowText)),
    title_(makeLabel(Brand::font(13, QFont::Medium), QPalette::WindowText)),
    path_(makeLabel(Brand::font(11), QPalette::PlaceholderText)),
    text_(new ReadingText),
    copy_(makeButton(actions.copy, QStringLiteral("Kopieren"), QStringLiteral("Ctrl+Shift+C"),
                     QStringLiteral("Fundstelle und Wortlaut kopieren"))),
    copyCitation_(makeButton(actions.copyCitation, QStringLiteral("Nur Fundstelle"),
                             QStringLiteral("Ctrl+Shift+F"), QStringLiteral("Nur die Fundstelle kopieren"))),
    insert_(makeButton(actions.insert, QStringLiteral("An Cursorposition einfügen"),
                       QStringLiteral("Ctrl+Return"),
                       QStringLiteral("In das Programm einfügen, das vorher vorn war"))),
    message_(makeLabel(Brand::font(11), QPalette::PlaceholderText)) {
    auto* stack = new QVBoxLayout(this);
    stack->setContentsMargins(24, 20, 14, 14);
    stack->setSpacing(6);
    stack->addWidget(citation_);
    stack->addWidget(title_);
    stack->addWidget(path_);
    stack->addSpacing(10);
    stack->addWidget(text_, 1);
    stack->addSpacing(4);
    auto* row = new QHBoxLayout;
    row->setSpacing(Brand::Spacing::tight);
    row->addWidget(copy_);
    row->addWidget(copyCitation_);
    row->addStretch();
    row->addWidget(insert_);
    stack->addLayout(row);
    stack->addWidget(message_);
    setMessage({});
    refreshIcons();
    copy_->setMinimumWidth(copy_->sizeHint().width()); // Also with the shorter label.
}

void SectionPane::setHit(const LegalHit& hit) {
    if (shown_ == hit) return;
    shown_ = hit;
    const auto& section = hit.section;
    citation_->setText(Brand::text(section.citation(hit.law)));
    title_->setText(Brand::text(section.title));
    title_->setVisible(!title_->text().isEmpty());
    path_->setText(Brand::text(section.path));
    path_->setVisible(!path_->text().isEmpty());
    text_->showText(Brand::text(section.text));
    setMessage({});
}

void SectionPane::setCopied(bool isCopied) {
    isCopied_ = isCopied;
    copy_->setText(isCopied ? QStringLiteral("Kopiert") : QStringLiteral("Kopieren"));
    copy_->setShortcut(
        QKeySequence(QStringLiteral("Ctrl+Shift+C"))); // Setting the text removes the shortcut.
    refreshIcons();
}

void SectionPane::setCanInsert(bool canInsert) { insert_->setEnabled(canInsert); }

void SectionPane::setMessage(std::string_view message) {
    message_->setText(Brand::text(message));
    message_->setVisible(!message.empty());
}

void SectionPane::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) refreshIcons();
    QWidget::changeEvent(event);
}

void SectionPane::refreshIcons() {
    copy_->setIcon(Symbol::icon(isCopied_ ? "checkmark" : "doc.on.doc"));
    copyCitation_->setIcon(Symbol::icon("quote.opening"));
    insert_->setIcon(Symbol::icon("text.cursor"));
}

} // namespace querlin
