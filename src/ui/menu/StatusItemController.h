#pragma once

#include "desktop/FileManager.h"
#include "desktop/FocusReturn.h"
#include "desktop/Permissions.h"
#include "desktop/Surfaces.h"
#include "desktop/SystemTray.h"
#include "desktop/TextInserter.h"
#include "dictation/DictationController.h"
#include "foundation/Published.h"
#include "foundation/TaskGroup.h"
#include "legal/LegalUpdateService.h"
#include "ui/menu/CommandWindow.h"
#include "ui/menu/StatusItem.h"
#include "ui/windows/WindowCoordinator.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace querlin {

/// What the commands act on. All of it outlives the controller of the menu.
struct StatusItemSources {
    Runtime runtime;
    DictationController& controller;
    AppSettings& settings;
    WindowCoordinator& windows;
    LegalUpdateService& legalUpdates;
    PermissionsManager& permissions;
    TextInserter& inserter;
    FocusReturn& focusReturn;
    Surfaces& surfaces;
    SystemTray& systemTray;
    /// Whether a panel shows icons over the session bus; unset until the first answer.
    const Published<std::optional<bool>>& notifierHost;
    FileManager& fileManager;
    std::filesystem::path logFile;
    std::function<void()> quit;
};

/// The program's only permanent surface: the tray icon with its menu, rebuilt at each change, and a window
/// with the same commands where there is no tray. One of the two can always be reached. Main thread.
class StatusItemController {
public:
    explicit StatusItemController(StatusItemSources sources);
    ~StatusItemController();
    StatusItemController(const StatusItemController&) = delete;
    StatusItemController& operator=(const StatusItemController&) = delete;

    /// Shows the window of commands: the user has started the program again.
    void present();

private:
    void subscribe();
    void lookAtTrays();
    void trayCame();
    void trayWent();
    void showPhase();
    void rebuildMenu();
    void perform(MenuCommand command);
    Task<> toggleDictation();
    CommandWindow& window();

    StatusItemSources sources_;
    std::unique_ptr<StatusItem> item_;
    std::unique_ptr<CommandWindow> window_;
    bool hasTray_ = false;
    Registration patience_;
    std::vector<Registration> subscriptions_;
    TaskGroup tasks_;
};

} // namespace querlin
