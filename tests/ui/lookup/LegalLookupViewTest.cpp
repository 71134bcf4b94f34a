#include "ui/lookup/LegalLookupView.h"

#include "SomeLaws.h"

#include "support/WindowsWorld.h"

#include <QClipboard>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QTextEdit>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gtest/gtest.h>

namespace querlin {
namespace {

/// The window in memory, over a controller on virtual time.
struct LegalLookupViewTest : testing::Test, WindowsWorld {
    void deliver(std::vector<LegalLaw> delivered) { writeCorpus(world.folder.path(), {"2026-01-01", std::move(delivered)}); }
    void open(std::vector<LegalLaw> delivered) {
        deliver(std::move(delivered));
        windows.showLegalLookup();
        view = windowNamed("Gesetze nachschlagen – BGB und FamFG");
        focusReturn.window = view;
        world.time.settle();
    }
    template<class Widget>
    Widget& the() {
        return *view->findChild<Widget*>();
    }
    QPushButton& button(const std::string& text) {
        for (auto* found : view->findChildren<QPushButton*>()) {
            if (found->text() == Brand::text(text)) return *found;
        }
        throw std::runtime_error("no button " + text);
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}, const QString& text = {}) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
        auto* focused = view->focusWidget();
        QApplication::sendEvent(focused ? focused : view, &event);
    }
    /// Letter by letter, and the pause.
    void type(const std::string& text) {
        for (const auto letter : Brand::text(text)) press(Qt::Key_unknown, {}, letter);
        world.time.advance(LawSearch::typingPause);
    }
    std::vector<std::string> rows() {
        std::vector<std::string> found;
        auto& list = the<QListWidget>();
        for (int row = 0; row < list.count(); ++row) found.push_back(Brand::utf8(list.item(row)->data(Qt::AccessibleTextRole).toString()));
        return found;
    }
    /// All labels that can be seen.
    std::string read() {
        std::vector<std::string> found;
        for (const auto* label : view->findChildren<QLabel*>()) {
            if (label->isVisibleTo(view) && !label->text().isEmpty()) found.push_back(Brand::utf8(label->text()));
        }
        return fmt::format("{}", fmt::join(found, " | "));
    }
    static std::string clipboard() { return Brand::utf8(QGuiApplication::clipboard()->text()); }

    QWidget* view = nullptr;
};

constexpr std::string_view fullText = "§ 1814 BGB – <i>Wann</i> geholfen wird\nWer <b>nicht</b> allein zurechtkommt, dem wird geholfen.\n\n"
                                      "Aber nur so weit wie nötig.";

TEST_F(LegalLookupViewTest, a_section_is_found_read_and_copied) {
    open(someLaws());
    EXPECT_TRUE(read().contains("FamFG: 2 §§, Stand 02.01.2024")) << read();
    type("1 ");
    EXPECT_EQ(rows(), (std::vector<std::string>{"§ 1 FamFG, (ohne Überschrift)", "§ 1814 BGB, <i>Wann</i> geholfen wird, Betreuung",
                                                "§ 1815 BGB, Aufgaben"}));
    EXPECT_EQ(read(), "§ 1 FamFG");
    the<QListWidget>().setCurrentRow(1);
    EXPECT_EQ(read(), "§ 1814 BGB | <i>Wann</i> geholfen wird | Viertes Buch / Hilfe");
    EXPECT_EQ(Brand::utf8(the<QTextEdit>().toPlainText()), fullText.substr(fullText.find('\n') + 1)) << "nothing is markup";

    button("Kopieren").click();
    EXPECT_EQ(clipboard(), fullText);
    button("Nur Fundstelle").click();
    EXPECT_EQ(clipboard(), "§ 1814 BGB");
    EXPECT_TRUE(button("Kopiert").isVisibleTo(view));
}

TEST_F(LegalLookupViewTest, the_keyboard_goes_from_the_field_to_the_text_and_back) {
    open(someLaws());
    auto& field = the<QLineEdit>();
    EXPECT_EQ(view->focusWidget(), &field);
    press(Qt::Key_Down);
    EXPECT_EQ(view->focusWidget(), &field) << "there is nothing to go to";
    for (const auto letter : QStringLiteral("1814")) press(Qt::Key_unknown, {}, letter);
    press(Qt::Key_Return);
    world.time.settle();
    EXPECT_EQ(rows().size(), 1U) << "without the pause";
    EXPECT_EQ(view->focusWidget(), &field);
    press(Qt::Key_Return);
    EXPECT_EQ(view->focusWidget(), &the<QTextEdit>());
    press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(view->focusWidget(), &field);
    type("geholfen");
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    EXPECT_EQ(the<QListWidget>().currentRow(), 1);
    press(Qt::Key_Up);
    press(Qt::Key_Up);
    EXPECT_EQ(view->focusWidget(), &field);
    press(Qt::Key_Escape);
    EXPECT_FALSE(view->isVisible());
}

TEST_F(LegalLookupViewTest, a_text_goes_once_to_the_application_from_before) {
    open(someLaws());
    type("1814");
    auto& insert = button("An Cursorposition einfügen");
    insert.click();
    EXPECT_TRUE(world.inserter.delivered.empty());
    EXPECT_FALSE(insert.isEnabled()) << "one is under way";
    world.time.advance(std::chrono::seconds(2));
    EXPECT_EQ(focusReturn.wishes, 1);
    EXPECT_EQ(world.inserter.delivered, std::vector<std::string>{std::string(fullText)});
    EXPECT_TRUE(insert.isEnabled());
    insert.click();
    windows.setController(nullptr);
    world.time.advance(std::chrono::seconds(2));
    EXPECT_EQ(world.inserter.delivered.size(), 1U) << "the controller went meanwhile, and the window with it";
}

TEST_F(LegalLookupViewTest, a_text_that_nobody_takes_is_on_the_clipboard_and_never_in_this_window) {
    open(someLaws());
    type("1814");
    focusReturn.isThere = false;
    button("An Cursorposition einfügen").click();
    world.time.advance(std::chrono::seconds(2));
    EXPECT_TRUE(world.inserter.delivered.empty());
    EXPECT_EQ(clipboard(), fullText);
    EXPECT_TRUE(read().contains("Kein anderes Fenster mit Schreibmarke gefunden – der Text liegt in der Zwischenablage.")) << read();
    button("Nur Fundstelle").click();
    EXPECT_FALSE(read().contains("Schreibmarke")) << "the line has done its work";
}

TEST_F(LegalLookupViewTest, the_first_load_is_shown_until_the_laws_are_there) {
    open({lawOf("BGB", {})});
    auto& bar = the<QProgressBar>();
    updates.stage.set(LegalUpdateStage::Checking{4, 17});
    EXPECT_TRUE(bar.isVisibleTo(view));
    updates.stage.set(LegalUpdateStage::Failed{"Keine der neuen Fassungen ließ sich laden."});
    EXPECT_FALSE(bar.isVisibleTo(view));
    button("Gesetze laden").click();
    world.time.settle();
    EXPECT_TRUE(read().contains("Kein Gesetzesmanifest gefunden.\n")) << "tried at once: " << read();

    type("1814");
    EXPECT_EQ(rows().size(), 0U);
    updates.stage.set(LegalUpdateStage::Applying{});
    deliver(someLaws());
    corpus.reload();
    updates.stage.set(LegalUpdateStage::Updated{{"BGB", "FamFG"}});
    world.time.settle();
    EXPECT_EQ(rows(), std::vector<std::string>{"§ 1814 BGB, <i>Wann</i> geholfen wird, Betreuung"}) << "the search ran again";
    updates.stage.set(LegalUpdateStage::Checking{1, 17});
    type("x");
    EXPECT_TRUE(read().contains("FamFG: 2 §§")) << "there are texts, later updates are quiet: " << read();
}

} // namespace
} // namespace querlin
