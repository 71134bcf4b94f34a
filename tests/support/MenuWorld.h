#pragma once

#include "support/WindowsWorld.h"

#include "ui/menu/StatusItemController.h"

#include <memory>

namespace querlin {

/// The menu besides the windows.
struct MenuWorld : WindowsWorld {
    /// Trays are watched, and waited for, on this queue.
    void makeItem(MainQueue& queue) {
        item = std::make_unique<StatusItemController>(
            StatusItemSources{.runtime = {.mainQueue = queue, .clock = world.time, .background = world.time},
                              .controller = world.controller,
                              .settings = world.settings,
                              .windows = windows,
                              .legalUpdates = updates,
                              .permissions = world.permissions,
                              .inserter = world.inserter,
                              .focusReturn = focusReturn,
                              .logFile = world.folder.path() / "Querlin.log",
                              .quit = [this] { ++quits; }});
    }

    int quits = 0;
    std::unique_ptr<StatusItemController> item;
};

} // namespace querlin
