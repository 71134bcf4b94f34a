#pragma once

#include "ui/menu/StatusMenu.h"

#include <functional>
#include <memory>
#include <vector>

#include <QMenu>

namespace querlin {

/// The entries as the toolkit's menu. There is one for the whole life of the icon, and it is brought into
/// line with new entries where it differs: a panel that has got a menu over the bus goes on showing that one,
/// and choices from one that has been replaced reach nobody. A menu that is open follows as well. Main
/// thread.
class MenuView {
public:
    using Perform = std::function<void(MenuCommand)>;
    explicit MenuView(Perform perform) : perform_(std::move(perform)) {}

    void setEntries(const std::vector<MenuEntry>& entries) { align(menu_, shown_, entries); }
    QMenu& menu() { return menu_; }

private:
    /// One line that is in the menu.
    struct Line {
        MenuEntry entry;
        QAction* action; ///< the menu's
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
