#pragma once

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

/// The commands of the menu in a window, for desktops without a tray and for who starts the program again.
/// The arrow keys move from one to the next. Main thread.
class CommandWindow final : public QWidget {
public:
    explicit CommandWindow(std::function<void(MenuCommand)> perform);

    void setEntries(const std::vector<MenuEntry>& entries, std::string_view symbol);
    /// Whether closing it leaves an icon in its place; a small one in the list of windows otherwise.
    void setHasTray(bool hasTray) { hasTray_ = hasTray; }

    /// On the user's wish: before all others, with the keyboard. It then stays until it is closed.
    void present();
    /// By itself: without the keyboard, which the user may be writing with.
    void offer();
    /// Hides it, unless the user has wished for it.
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
    std::vector<MenuEntry> entries_;
    std::string symbol_;
    QWidget* column_ = nullptr;
    QVBoxLayout* stack_ = nullptr;
    std::vector<std::pair<MenuCommand, QPushButton*>> buttons_; ///< of the column
    MenuCommand focused_ = MenuCommand::toggleDictation;        ///< that the keyboard was on last
    bool hasTray_ = false;
    bool isWished_ = false;
};

} // namespace querlin
