#pragma once

#include <QLabel>
#include <QPropertyAnimation>
#include <QScrollArea>

namespace querlin {

/// The text recognised so far; always scrolled to its end.
class LiveText final : public QScrollArea {
public:
    explicit LiveText(QWidget* parent = nullptr);

    void setText(const QString& text);
    /// Takes the colours from the current theme.
    void refreshColors();

private:
    QLabel* text_;
    QPropertyAnimation scrolling_;
};

} // namespace querlin
