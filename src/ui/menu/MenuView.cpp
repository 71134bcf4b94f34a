#include "ui/menu/MenuView.h"

#include "ui/menu/MenuText.h"

#include <algorithm>

namespace querlin {

namespace {

/// Whether an entry can take the place of the other by a change of its text.
bool areAlike(const MenuEntry& one, const MenuEntry& other) {
    return one.command == other.command && one.isSeparator() == other.isSeparator() &&
           one.submenu.empty() == other.submenu.empty();
}

/// Deferred: the action may be the one that is being triggered.
void remove(QMenu& menu, QAction* action) {
    menu.removeAction(action);
    if (auto* submenu = action->menu()) {
        submenu->deleteLater(); // Deletes its action too.
    } else {
        action->deleteLater();
    }
}

} // namespace

/// Entries keep their order, so one pass over both lists finds insertions and removals.
void MenuView::align(QMenu& menu, std::vector<Line>& lines, const std::vector<MenuEntry>& entries) {
    auto at = lines.begin();
    for (const auto& entry : entries) {
        const auto found =
            std::find_if(at, lines.end(), [&](const Line& line) { return areAlike(line.entry, entry); });
        if (found == lines.end()) {
            at = lines.insert(at, insert(menu, at == lines.end() ? nullptr : at->action, entry));
        } else {
            std::for_each(at, found, [&](const Line& line) { remove(menu, line.action); });
            at = lines.erase(at, found);
            update(*at, entry);
        }
        ++at;
    }
    std::for_each(at, lines.end(), [&](const Line& line) { remove(menu, line.action); });
    lines.erase(at, lines.end());
}

MenuView::Line MenuView::insert(QMenu& menu, QAction* before, const MenuEntry& entry) {
    Line line{.entry = entry, .action = nullptr, .submenu = nullptr};
    if (entry.isSeparator()) {
        line.action = menu.insertSeparator(before);
        return line;
    }
    if (entry.submenu.empty()) {
        line.action = new QAction(MenuText::label(entry.title), &menu);
        if (entry.key != 0) line.action->setShortcut(MenuText::shortcut(entry.key));
        QObject::connect(line.action, &QAction::triggered, line.action,
                         [this, command = entry.command] { perform_(command); });
    } else {
        auto* submenu = new QMenu(MenuText::label(entry.title), &menu);
        line.action = submenu->menuAction();
        line.submenu = std::make_shared<std::vector<Line>>();
        align(*submenu, *line.submenu, entry.submenu);
    }
    line.action->setEnabled(entry.isEnabled);
    menu.insertAction(before, line.action);
    return line;
}

void MenuView::update(Line& line, const MenuEntry& entry) {
    if (line.entry == entry) return;
    line.entry = entry;
    line.action->setText(MenuText::label(entry.title));
    line.action->setEnabled(entry.isEnabled);
    if (line.submenu) align(*line.action->menu(), *line.submenu, entry.submenu);
}

} // namespace querlin
