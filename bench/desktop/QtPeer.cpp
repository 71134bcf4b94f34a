// What a program with Qt's classes does:
//   own    has a clipboard of 22 forms
//   save   reads all forms of the clipboard, and prints the median of its seconds
//   field  shows an editor

#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

double saveAll() {
    QElapsedTimer timer;
    timer.start();
    const auto* contents = QApplication::clipboard()->mimeData();
    qsizetype bytes = 0;
    for (const auto& format : contents->formats()) bytes += contents->data(format).size();
    return bytes > 0 ? static_cast<double>(timer.nsecsElapsed()) * 1e-9 : 0;
}

} // namespace

int main(int count, char** arguments) {
    QApplication application(count, arguments);
    const QString what = application.arguments().value(1);
    QPlainTextEdit editor;
    if (what == "own") {
        auto* contents = new QMimeData; // The clipboard's own from here on.
        contents->setText("Text");
        contents->setHtml("<b>Text</b>");
        for (int i = 0; i < 17; ++i)
            contents->setData(QString("application/x-form-%1").arg(i), QByteArray(1000 * (i + 1), 'x'));
        QApplication::clipboard()->setMimeData(contents);
    } else if (what == "save") {
        QTimer::singleShot(100, [&] {
            std::vector<double> seconds;
            for (int i = 0; i < 50; ++i) seconds.push_back(saveAll());
            std::ranges::sort(seconds);
            std::printf("%f\n", seconds[seconds.size() / 2]);
            QApplication::quit();
        });
    } else {
        editor.setPlainText("erste\nzweite");
        editor.show();
    }
    return QApplication::exec();
}
