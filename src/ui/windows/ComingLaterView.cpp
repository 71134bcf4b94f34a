#include "ui/windows/ComingLaterView.h"

#include "ui/brand/AppMarkView.h"
#include "ui/brand/Brand.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace querlin {

ComingLaterView::ComingLaterView(const std::string& text) {
    auto* stack = new QVBoxLayout(this);
    stack->setContentsMargins(Brand::Spacing::section, Brand::Spacing::section, Brand::Spacing::section,
                              Brand::Spacing::wide);
    stack->setSpacing(Brand::Spacing::normal);
    stack->addStretch();
    stack->addWidget(new AppMarkView(64), 0, Qt::AlignHCenter);
    auto* words = new QLabel(Brand::text(text));
    words->setTextFormat(Qt::PlainText);
    words->setWordWrap(true);
    words->setAlignment(Qt::AlignHCenter);
    words->setFont(Brand::font(13));
    stack->addWidget(words);
    stack->addStretch();
    auto* close = new QPushButton(QStringLiteral("Schließen"));
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, [this] { window()->close(); });
    stack->addWidget(close, 0, Qt::AlignHCenter);
    close->setFocus();
}

void ComingLaterView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        window()->close();
    } else {
        QWidget::keyPressEvent(event);
    }
}

} // namespace querlin
