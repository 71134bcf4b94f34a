#include "ui/menu/MenuView.h"

#include "support/QtApplication.h"
#include "ui/brand/Brand.h"

namespace querlin {
namespace {

using enum MenuCommand;

/// A menu, its choices, and the same menu made afresh to compare with.
class MenuViewTest : public ::testing::Test {
protected:
    static MenuEntry entry(std::string title, MenuCommand command, bool isEnabled = true) {
        return {.title = std::move(title), .command = command, .isEnabled = isEnabled, .key = 0, .submenu = {}};
    }
    static MenuEntry separator() { return entry({}, none); }

    static std::vector<std::string> lines(const QMenu& menu) {
        std::vector<std::string> found;
        for (const auto* action : menu.actions()) {
            auto line = action->isSeparator() ? "-" : Brand::utf8(action->text());
            if (!action->isEnabled()) line = "(" + line + ")";
            found.push_back(line);
            if (!action->menu()) continue;
            for (const auto& inner : lines(*action->menu())) found.push_back("  " + inner);
        }
        return found;
    }
    std::vector<std::string> shown() { return lines(view.menu()); }

    QApplication& application = qtApplication(); // Before all widgets.
    std::vector<MenuCommand> chosen;
    MenuView view{[this](MenuCommand command) { chosen.push_back(command); }};
};

TEST_F(MenuViewTest, whatever_it_was_it_becomes_what_is_wanted) {
    auto help = entry("Hilfe & Diagnose", none);
    help.submenu = {entry("Protokoll", openLog)};
    auto longerHelp = help;
    longerHelp.submenu.insert(longerHelp.submenu.begin(), entry("Diagnose", writeDiagnostics));
    const std::vector<std::vector<MenuEntry>> menus = {
        {entry("Status: Bereit", none, false), entry("Starten", toggleDictation), help, entry("Beenden", quit)},
        {entry("Status: Fehler", none, false), separator(), entry("Fehler", clearNotice), separator(), entry("Starten", toggleDictation),
         longerHelp, entry("Beenden", quit)},
        {entry("Starten", toggleDictation, false), entry("Abbrechen", cancelDictation), entry("Beenden", quit)},
        {separator(), separator(), entry("Beenden", quit)},
        {},
    };
    for (const auto& before : menus) {
        for (const auto& after : menus) {
            view.setEntries(before);
            view.setEntries(after);
            MenuView afresh([](MenuCommand) {});
            afresh.setEntries(after);
            EXPECT_EQ(shown(), lines(afresh.menu())) << before.size() << " to " << after.size();
        }
    }
}

TEST_F(MenuViewTest, a_choice_may_take_its_own_line_away) {
    MenuView own([&](MenuCommand command) {
        chosen.push_back(command);
        own.setEntries({entry("Beenden", quit)});
    });
    own.setEntries({entry("Fehler", clearNotice), entry("Beenden", quit)});
    own.menu().actions().at(0)->trigger();
    EXPECT_EQ(chosen, std::vector{clearNotice});
    EXPECT_EQ(lines(own.menu()), std::vector<std::string>{"Beenden"});
}

TEST_F(MenuViewTest, titles_are_one_line_of_bearable_length) {
    struct Row {
        std::string title;
        std::string label;
    };
    const std::vector<Row> rows = {
        {"Hilfe & Diagnose", "Hilfe && Diagnose"},
        {"Letzter Fehler: erst das\nund  dann das\t", "Letzter Fehler: erst das und dann das"},
        {std::string(80, 'x'), std::string(80, 'x')},
        {std::string(81, 'x'), std::string(79, 'x') + "…"},
        {std::string(78, 'x') + "😀😀", std::string(78, 'x') + "…"}, // No half of a character.
    };
    for (const auto& [title, label] : rows) {
        view.setEntries({entry(title, quit)});
        EXPECT_EQ(shown().at(0), label);
    }
}

} // namespace
} // namespace querlin
