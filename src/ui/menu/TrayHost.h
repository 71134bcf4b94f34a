#pragma once

namespace querlin::TrayHost {

/// Whether there is somebody to show an icon: a host of StatusNotifierItems on the session bus, or the owner
/// of the X server's system tray (System Tray Protocol 0.3).
bool isThere();

} // namespace querlin::TrayHost
