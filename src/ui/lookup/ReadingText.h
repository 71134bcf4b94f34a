#pragma once

#include <QString>
#include <QTextEdit>

namespace querlin {

/// A long text for reading: plain, selectable, in lines that are neither dense nor longer than the eye likes.
class ReadingText final : public QTextEdit {
public:
    ReadingText();

    /// From its beginning. Nothing in it is taken for markup.
    void showText(const QString& text);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    int margin_ = 0;
};

} // namespace querlin
