#include "support/MenuWorld.h"

#include <algorithm>

#include <QPushButton>

namespace querlin {
namespace {

/// The commands without a tray, in memory, over a controller on virtual time.
class StatusItemControllerTest : public ::testing::Test, protected MenuWorld {
protected:
    StatusItemControllerTest() { makeItem(world.time, noPanel); }

    static QWidget* window() { return windowNamed("Querlin"); }
    /// One that a command has opened.
    static QWidget* otherWindow() {
        const auto all = QApplication::topLevelWidgets();
        const auto found = std::ranges::find_if(all, [](auto* widget) { return widget->isVisible() && widget != window(); });
        return found == all.end() ? nullptr : *found;
    }
    static QPushButton* button(const std::string& name) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        for (auto* found : window()->findChildren<QPushButton*>()) {
            if (found->accessibleName() == Brand::text(name)) return found;
        }
        return nullptr;
    }
    void activate() {
        window()->activateWindow();
        for (int turn = 0; turn < 100 && !window()->isActiveWindow(); ++turn) QCoreApplication::processEvents();
        ASSERT_TRUE(window()->isActiveWindow());
    }
};

TEST_F(StatusItemControllerTest, without_a_tray_the_commands_come_in_a_window_after_three_seconds) {
    world.wait(seconds(2.9));
    EXPECT_EQ(window(), nullptr);
    world.wait(seconds(0.2));
    ASSERT_NE(window(), nullptr);
    EXPECT_TRUE(window()->testAttribute(Qt::WA_ShowWithoutActivating)) << "the user may be writing";

    window()->close();
    QCoreApplication::processEvents();
    ASSERT_NE(window(), nullptr);
    EXPECT_TRUE(window()->isMinimized());
    item->present();
    EXPECT_FALSE(window()->isMinimized());
}

TEST_F(StatusItemControllerTest, a_dictation_from_the_window_goes_back_to_the_field_before) {
    item->present();
    activate();
    button("Aufnahme starten")->click();
    EXPECT_EQ(world.phase(), DictationPhase::Kind::idle) << "first the focus";
    button("Aufnahme starten")->click(); // Twice, from impatience.
    world.wait(seconds(0.2));
    EXPECT_EQ(world.phase(), DictationPhase::Kind::recording);
    EXPECT_EQ(focusReturn.wishes, 2);

    world.wait(seconds(2));
    button("Aufnahme stoppen")->click();
    world.wait(seconds(0.01));
    EXPECT_EQ(world.phase(), DictationPhase::Kind::transcribing) << "nobody waits for the focus to stop";
    EXPECT_FALSE(button("Aufnahme starten")->isEnabled());
    world.wait(seconds(10));
    EXPECT_EQ(focusReturn.wishes, 2);
    EXPECT_TRUE(button("Aufnahme starten")->isEnabled());
}

TEST_F(StatusItemControllerTest, the_keyboard_stays_on_its_command_while_phases_change) {
    item->present();
    button("Abbrechen");
    const auto focused = [] {
        const auto* widget = window()->focusWidget();
        return widget ? Brand::utf8(widget->accessibleName()) : std::string();
    };
    EXPECT_EQ(focused(), "Aufnahme starten");
    world.press();
    EXPECT_EQ(focused(), "Aufnahme stoppen");
    world.wait(seconds(2));
    world.release();
    world.wait(seconds(20));
    EXPECT_EQ(focused(), "Aufnahme starten") << "after it couldn't be chosen for a while";
    button("Diktatverlauf…")->setFocus();
    world.press();
    EXPECT_EQ(focused(), "Diktatverlauf…");
}

TEST_F(StatusItemControllerTest, changes_show_at_once) {
    item->present();
    windows.showEnhancementFailureNotice("Modell & Netz fehlen");
    auto* notice = button("Letzter Fehler: Modell & Netz fehlen");
    ASSERT_NE(notice, nullptr);
    notice->click();
    EXPECT_EQ(button("Letzter Fehler: Modell & Netz fehlen"), nullptr);

    world.holdKey.canListen = false;
    world.controller.installHotkey();
    EXPECT_NE(button("⚠︎ Bedienungshilfen fehlen – Hotkey inaktiv"), nullptr);
}

TEST_F(StatusItemControllerTest, each_command_leads_somewhere) {
    item->present();
    for (const auto* command :
         {"Diktatverlauf…", "Gesetze nachschlagen…", "Einstellungen…", "Berechtigungen prüfen…", "Die Mandolan kennenlernen…",
          "Engine-Vergleich ausführen…", "Kettenprüfung ausführen…", "Feldbeobachtung prüfen…", "Nach Updates suchen…", "Über Querlin"}) {
        ASSERT_NE(button(command), nullptr) << command;
        button(command)->click();
        EXPECT_NE(otherWindow(), nullptr) << command;
        if (auto* opened = otherWindow()) opened->close();
    }
    button("Gesetzesstände aktualisieren…")->click();
    EXPECT_NE(otherWindow(), nullptr);
    world.wait(seconds(1));
    EXPECT_FALSE(std::holds_alternative<LegalUpdateStage::Idle>(updates.stage.get()));
    button("Querlin beenden")->click();
    EXPECT_EQ(quits, 1);
}

} // namespace
} // namespace querlin
