#pragma once

#include <QLabel>

namespace querlin {

/// One line of plain text that is cut with an ellipsis where there is no room for it.
class ElidedLabel final : public QLabel {
public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// Text in this colour, whatever the palette says.
void setTextColor(QLabel& label, const QColor& color);

} // namespace querlin
