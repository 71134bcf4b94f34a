#pragma once

#include "ui/menu/StatusMenu.h"

#include <functional>
#include <string>
#include <vector>

#include <QWidget>

class QVBoxLayout;

namespace querlin {

/// The commands of the menu in a window, for desktops without a tray and for who starts the program again.
class CommandWindow final : public QWidget {
public:
    explicit CommandWindow(std::function<void(MenuCommand)> perform);

    void setEntries(const std::vector<MenuEntry>& entries, std::string_view symbol);
    /// Whether closing it leaves an icon in its place; a small one in the list of windows otherwise.
    void setHasTray(bool hasTray) { hasTray_ = hasTray; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void rebuild();
    void add(const std::vector<MenuEntry>& entries);
    void addButton(const MenuEntry& entry);

    std::function<void(MenuCommand)> perform_;
    std::vector<MenuEntry> entries_;
    std::string symbol_;
    QWidget* column_ = nullptr;
    QVBoxLayout* stack_ = nullptr;
    bool hasTray_ = false;
};

} // namespace querlin
