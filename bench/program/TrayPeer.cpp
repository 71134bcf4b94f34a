// The least that a program with a symbol in the tray can be.

#include <QApplication>
#include <QMenu>
#include <QPainter>
#include <QPixmap>
#include <QSystemTrayIcon>

int main(int count, char** arguments) {
    QApplication application(count, arguments);
    QApplication::setQuitOnLastWindowClosed(false);
    QPixmap symbol(22, 22);
    symbol.fill(Qt::transparent);
    {
        QPainter painter(&symbol);
        painter.setBrush(Qt::black);
        painter.drawEllipse(2, 2, 18, 18);
    }
    QMenu menu;
    menu.addAction(QStringLiteral("Beenden"), &application, &QApplication::quit);
    QSystemTrayIcon icon{QIcon(symbol)};
    icon.setContextMenu(&menu);
    icon.show();
    return QApplication::exec();
}
