#pragma once

#include "support/WindowsWorld.h"

#include "platform/x11/toolkit/X11SystemTray.h"
#include "ui/menu/StatusItemController.h"

#include <memory>

namespace querlin {

/// The menu besides the windows.
struct MenuWorld : WindowsWorld {
    /// The tray of the X server is waited for on this queue.
    void makeItem(MainQueue& queue, const Published<std::optional<bool>>& notifierHost) {
        systemTray = std::make_unique<X11SystemTray>(queue);
        item = std::make_unique<StatusItemController>(
            StatusItemSources{.runtime = {.mainQueue = queue, .clock = world.time, .background = world.time},
                              .controller = world.controller,
                              .settings = world.settings,
                              .windows = windows,
                              .legalUpdates = updates,
                              .permissions = world.permissions,
                              .inserter = world.inserter,
                              .focusReturn = focusReturn,
                              .surfaces = surfaces,
                              .systemTray = *systemTray,
                              .notifierHost = notifierHost,
                              .fileManager = fileManager,
                              .logFile = world.folder.path() / "Querlin.log",
                              .quit = [this] { ++quits; }});
    }

    /// One that shows nothing.
    struct NoFileManager final : FileManager {
        void show(std::string /*url*/, std::function<void()> failed) override { failed(); }
    } fileManager;
    Published<std::optional<bool>> noPanel{false};
    int quits = 0;
    std::unique_ptr<X11SystemTray> systemTray;
    std::unique_ptr<StatusItemController> item;
};

} // namespace querlin
