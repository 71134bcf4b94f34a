// A program that is pasted into and takes its time: target DELAY_MS FILE
//
// Its window has the keyboard. So long after each Ctrl+V it asks for the clipboard's text, and appends what it is
// given to the file, with a line end.

#include <cstdlib>
#include <fstream>

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QTimer>
#include <QWidget>

namespace {

class Target final : public QWidget {
public:
    Target(int delayInMilliseconds, const char* file) : delay_(delayInMilliseconds), file_(file, std::ios::app) {
        setWindowTitle(QStringLiteral("Target"));
        resize(400, 200);
        show();
    }

protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (event->matches(QKeySequence::Paste)) QTimer::singleShot(delay_, this, [this] { paste(); });
    }

private:
    void paste() { file_ << QGuiApplication::clipboard()->text().toStdString() << std::endl; }

    int delay_;
    std::ofstream file_;
};

} // namespace

int main(int count, char** arguments) {
    if (count != 3) return EXIT_FAILURE;
    QApplication application(count, arguments);
    Target target(std::atoi(arguments[1]), arguments[2]);
    return QApplication::exec();
}
