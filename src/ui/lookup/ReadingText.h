#pragma once

#include <QString>
#include <QTextEdit>

namespace querlin {

/// A long text for reading: plain, selectable, with generous line spacing and a limited line length.
class ReadingText final : public QTextEdit {
public:
    ReadingText();

    /// Shows the text from its beginning; markup is not interpreted.
    void showText(const QString& text);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    int margin_ = 0;
};

} // namespace querlin
