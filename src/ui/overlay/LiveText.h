#pragma once

#include <QLabel>
#include <QPropertyAnimation>
#include <QScrollArea>

namespace querlin {

/// What has been understood so far; always shows its end.
class LiveText final : public QScrollArea {
public:
    explicit LiveText(QWidget* parent = nullptr);

    void setText(const QString& text);
    /// Colours as the theme has them now.
    void refreshColors();

private:
    QLabel* text_;
    QPropertyAnimation scrolling_;
};

} // namespace querlin
