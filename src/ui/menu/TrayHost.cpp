#include "ui/menu/TrayHost.h"

#include "ui/display/X11Display.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusInterface>

namespace querlin::TrayHost {

namespace {

bool isNotifierHostThere() {
    const auto bus = QDBusConnection::sessionBus();
    const auto watcher = QStringLiteral("org.kde.StatusNotifierWatcher");
    if (!bus.isConnected() || !bus.interface()->isServiceRegistered(watcher)) return false;
    const QDBusInterface object(watcher, QStringLiteral("/StatusNotifierWatcher"), watcher, bus);
    return object.property("IsStatusNotifierHostRegistered").toBool();
}

bool isSystemTrayThere() {
    auto* connection = X11Display::connection();
    return connection && X11Display::selectionOwner(connection, "_NET_SYSTEM_TRAY_S0") != XCB_WINDOW_NONE;
}

} // namespace

bool isThere() { return isSystemTrayThere() || isNotifierHostThere(); }

} // namespace querlin::TrayHost
