#pragma once

#include <string>

#include <QWidget>

namespace querlin {

/// Says that something is not there yet.
class ComingLaterView final : public QWidget {
public:
    explicit ComingLaterView(const std::string& text);

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace querlin
