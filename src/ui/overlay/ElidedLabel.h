#pragma once

#include <QLabel>

namespace querlin {

/// One line of plain text, shortened with an ellipsis if it doesn't fit.
class ElidedLabel final : public QLabel {
public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// Sets the text colour, independent of the palette.
void setTextColor(QLabel& label, const QColor& color);

} // namespace querlin
