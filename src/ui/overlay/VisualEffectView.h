#pragma once

#include <QWidget>

namespace querlin {

/// The surface of a floating panel: rounded, with a thin border in the product's colour; light or dark with
/// the desktop.
class VisualEffectView : public QWidget {
public:
    explicit VisualEffectView(double cornerRadius, QWidget* parent = nullptr);

    double cornerRadius() const { return cornerRadius_; }
    /// Slightly translucent, if there is a compositor.
    void setTranslucent(bool translucent);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    double cornerRadius_;
    bool isTranslucent_ = false;
};

} // namespace querlin
