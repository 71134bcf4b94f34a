#pragma once

#include "ui/menu/StatusMenu.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <QMenu>
#include <QSystemTrayIcon>

namespace querlin {

/// The icon in the tray with its menu. Main thread.
class StatusItem {
public:
    /// Only where there is a tray: the toolkit decides now, and for good, how it speaks with it.
    explicit StatusItem(std::function<void(MenuCommand)> perform);

    /// The brand mark for no symbol, else the symbol of this name.
    void setSymbol(std::string_view symbol);
    void setToolTip(const std::string& text);
    /// Replaces the menu; one that is open stays until it is closed.
    void setMenu(const std::vector<MenuEntry>& entries);

private:
    void fill(QMenu& menu, const std::vector<MenuEntry>& entries);

    std::function<void(MenuCommand)> perform_;
    QSystemTrayIcon icon_;
    std::unique_ptr<QMenu> menu_;
};

} // namespace querlin
