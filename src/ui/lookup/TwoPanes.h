#pragma once

#include <QSplitter>

namespace querlin {

/// Two panes with a thin divider that can be dragged.
class TwoPanes final : public QSplitter {
public:
    TwoPanes(QWidget* left, QWidget* right, int leftWidth);

protected:
    QSplitterHandle* createHandle() override;
};

} // namespace querlin
