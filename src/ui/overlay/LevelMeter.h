#pragma once

#include <QVariantAnimation>
#include <QWidget>

namespace querlin {

/// A small bar that shows how loud the microphone is. Screen readers know it as "Eingangspegel".
class LevelMeter final : public QWidget {
public:
    explicit LevelMeter(QWidget* parent = nullptr);

    /// From 0 to 1.
    void setLevel(double level);
    /// Cut off to a whole number.
    int percent() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    double level_ = 0;
    QVariantAnimation movement_;
};

} // namespace querlin
