#pragma once

#include <array>

#include <QApplication>

namespace querlin {

/// The toolkit's one application of this process. Without a display it draws into memory.
inline QApplication& qtApplication() {
    static int count = 1;
    static std::array<char, 8> name{"querlin"};
    static std::array<char*, 2> arguments{name.data(), nullptr};
    if (!qEnvironmentVariableIsSet("DISPLAY") && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent"); // Nobody's panel.
    }
    // Never destroyed: the toolkit's own statics have gone by the time that ours go.
    static auto* application = new QApplication(count, arguments.data());
    QApplication::setQuitOnLastWindowClosed(false);
    return *application;
}

} // namespace querlin
