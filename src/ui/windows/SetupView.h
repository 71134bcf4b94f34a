#pragma once

#include "ui/windows/SetupFinding.h"

#include <functional>
#include <vector>

#include <QTimer>
#include <QWidget>

class QVBoxLayout;

namespace querlin {

/// What the program needs, and its state, refreshed while the window is open.
class SetupView final : public QWidget {
public:
    SetupView(std::function<std::vector<SetupFinding>()> look, std::function<void()> onFinish);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void refresh();
    void rebuild();

    std::function<std::vector<SetupFinding>()> look_;
    std::vector<SetupFinding> findings_;
    QVBoxLayout* rows_;
    QTimer timer_;
};

} // namespace querlin
