#pragma once

#include <QWidget>

namespace querlin {

/// The program's icon in a window.
class AppMarkView final : public QWidget {
public:
    /// `size` in logical pixels, square.
    explicit AppMarkView(int size = 44, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace querlin
