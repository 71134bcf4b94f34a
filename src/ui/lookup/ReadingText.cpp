#include "ui/lookup/ReadingText.h"

#include "ui/brand/Brand.h"

#include <algorithm>

#include <QTextBlockFormat>
#include <QTextCursor>

namespace querlin {

namespace {

constexpr int lineHeightInPercent = 140;
/// Width of about 85 characters.
constexpr int longestLine = 620;

} // namespace

ReadingText::ReadingText() {
    setReadOnly(true);
    setAcceptRichText(false);
    setFrameShape(NoFrame);
    setFont(Brand::font(14));
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    viewport()->setAutoFillBackground(false);
    document()->setDocumentMargin(0);
    setTabChangesFocus(true);
    setAccessibleName(QStringLiteral("Gesetzestext"));
}

void ReadingText::showText(const QString& text) {
    setPlainText(text);
    QTextCursor whole(document());
    whole.select(QTextCursor::Document);
    QTextBlockFormat format;
    format.setLineHeight(lineHeightInPercent, QTextBlockFormat::ProportionalHeight);
    whole.mergeBlockFormat(format);
    moveCursor(QTextCursor::Start);
}

void ReadingText::resizeEvent(QResizeEvent* event) {
    QTextEdit::resizeEvent(event);
    const int margin = std::max(0, width() - longestLine);
    if (margin == margin_) return;
    margin_ = margin;
    setViewportMargins(0, 0, margin, 0);
}

} // namespace querlin
