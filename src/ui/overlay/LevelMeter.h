#pragma once

#include <QVariantAnimation>
#include <QWidget>

namespace querlin {

/// A small bar that shows the microphone's level. Its accessible name is "Eingangspegel".
class LevelMeter final : public QWidget {
public:
    explicit LevelMeter(QWidget* parent = nullptr);

    /// From 0 to 1.
    void setLevel(double level);
    /// Truncated to a whole number.
    int percent() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    double level_ = 0;
    QVariantAnimation movement_;
};

} // namespace querlin
