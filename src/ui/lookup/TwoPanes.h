#pragma once

#include <QSplitter>

namespace querlin {

/// Two sides with a fine line between them that can be dragged.
class TwoPanes final : public QSplitter {
public:
    TwoPanes(QWidget* left, QWidget* right, int leftWidth);

protected:
    QSplitterHandle* createHandle() override;
};

} // namespace querlin
