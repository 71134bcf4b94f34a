#pragma once

#include <string>

#include <QColor>
#include <QVariantAnimation>
#include <QWidget>

namespace querlin {

/// A disc with the symbol of the phase; pulses during a recording.
class Indicator final : public QWidget {
public:
    static constexpr int diameter = 30;
    /// Size of the widget: the disc at its largest.
    static constexpr int room = 36;

    explicit Indicator(QWidget* parent = nullptr);

    void show(std::string symbol, const QColor& color, bool pulses);

protected:
    void paintEvent(QPaintEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void animate();

    std::string symbol_;
    QColor color_;
    bool pulses_ = false;
    QVariantAnimation pulse_;
};

} // namespace querlin
