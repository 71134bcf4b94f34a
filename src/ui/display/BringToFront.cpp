#include "ui/display/BringToFront.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

namespace querlin {

void bringToFront(QWidget& window, Surfaces& surfaces) {
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
    surfaces.activate(window.winId());
}

void centre(QWidget& window) {
    const auto* under = QGuiApplication::screenAt(QCursor::pos());
    const auto* screen = under ? under : QGuiApplication::primaryScreen();
    if (screen) window.move(screen->availableGeometry().center() - window.rect().center());
}

} // namespace querlin
