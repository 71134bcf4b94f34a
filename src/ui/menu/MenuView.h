#pragma once

#include "ui/menu/StatusMenu.h"

#include <functional>
#include <memory>
#include <vector>

#include <QMenu>

namespace querlin {

/// The entries as the toolkit's menu. The menu lives as long as the icon and is updated in place: a panel
/// keeps showing the menu that it once got over the bus, and choices from a replaced one would be lost. An
/// open menu is updated as well. Main thread.
class MenuView {
public:
    using Perform = std::function<void(MenuCommand)>;
    explicit MenuView(Perform perform) : perform_(std::move(perform)) {}

    void setEntries(const std::vector<MenuEntry>& entries) { align(menu_, shown_, entries); }
    QMenu& menu() { return menu_; }

private:
    /// A line of the menu.
    struct Line {
        MenuEntry entry;
        QAction* action; ///< owned by the menu
        std::shared_ptr<std::vector<Line>> submenu;
    };

    void align(QMenu& menu, std::vector<Line>& lines, const std::vector<MenuEntry>& entries);
    Line insert(QMenu& menu, QAction* before, const MenuEntry& entry);
    void update(Line& line, const MenuEntry& entry);

    Perform perform_;
    QMenu menu_;
    std::vector<Line> shown_;
};

} // namespace querlin
