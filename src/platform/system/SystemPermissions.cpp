#include "platform/system/SystemPermissions.h"

#include "desktop/Permissions.h"
#include "foundation/Files.h"
#include "platform/system/SettingsPrograms.h"
#include "state/DiagnosticsLog.h"

#include <fmt/format.h>

namespace querlin {

using Pane = PermissionsManager::SettingsPane;

bool SystemPermissions::isProcessTrusted() {
    return sources_.canListenToKeys() && sources_.canLookIntoApplications();
}

bool SystemPermissions::requestTrust() {
    return sources_.enableAccessibility() && sources_.canListenToKeys();
}

void SystemPermissions::openSettings(std::string_view pane) {
    bool isOpen = false;
    if (pane == rawValue(Pane::speech)) {
        // What the recognition needs is a model in this folder.
        (void)Files::makeFolder(sources_.models); // Else there is nothing to show, as the note says.
        isOpen = SettingsPrograms::openFolder(sources_.models);
    } else {
        isOpen = SettingsPrograms::open(pane == rawValue(Pane::microphone) ? "sound" : "accessibility");
    }
    if (!isOpen)
        DiagnosticsLog::note("app",
                             fmt::format("Für „{}“ ist hier kein Einstellungsprogramm zu finden.", pane));
}

} // namespace querlin
