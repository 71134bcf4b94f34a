#pragma once

#include <string>

#include <QWidget>

namespace querlin {

/// Stand-in for a window that a later version brings.
class ComingLaterView final : public QWidget {
public:
    explicit ComingLaterView(const std::string& text);

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace querlin
