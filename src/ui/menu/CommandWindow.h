#pragma once

#include "desktop/Surfaces.h"
#include "ui/menu/StatusMenu.h"

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <QWidget>

class QPushButton;
class QVBoxLayout;

namespace querlin {

/// The menu's commands in a window, for desktops without a tray and for users who start the program again.
/// The arrow keys move between the commands. Main thread.
class CommandWindow final : public QWidget {
public:
    CommandWindow(std::function<void(MenuCommand)> perform, Surfaces& surfaces);

    void setEntries(const std::vector<MenuEntry>& entries, std::string_view symbol);
    /// With a tray the window may be closed; without one, closing minimises it.
    void setHasTray(bool hasTray) { hasTray_ = hasTray; }

    /// Shown on request: in front, with the focus, until the user closes it.
    void present();
    /// Shown without a request: does not take the focus, since the user may be typing.
    void offer();
    /// Hides it, unless the user has asked for it.
    void withdraw();

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void centreInFull();
    void rebuild();
    void keepFocus();
    void giveFocus();
    void add(const std::vector<MenuEntry>& entries);
    void addButton(const MenuEntry& entry);

    std::function<void(MenuCommand)> perform_;
    Surfaces& surfaces_;
    std::vector<MenuEntry> entries_;
    std::string symbol_;
    QWidget* column_ = nullptr;
    QVBoxLayout* stack_ = nullptr;
    std::vector<std::pair<MenuCommand, QPushButton*>> buttons_; ///< in the column
    MenuCommand focused_ = MenuCommand::toggleDictation;        ///< the last one with the focus
    bool hasTray_ = false;
    bool isWished_ = false;
};

} // namespace querlin
