#include "ui/lookup/LegalLookupView.h"

#include "support/DictationWorld.h"
#include "support/FakePortal.h"
#include "support/Laws.h"
#include "support/QtApplication.h"
#include "ui/brand/Brand.h"

#include <set>

#include <QClipboard>
#include <QKeyEvent>

namespace querlin {
namespace {

/// The application from before, as far as there is one.
class FakeFocusReturn final : public FocusReturn {
public:
    Task<bool> giveBack() override {
        ++calls;
        if (isThere && window) window->hide(); // Another window has the keyboard now.
        co_return isThere;
    }
    bool isThere = true;
    QWidget* window = nullptr;
    int calls = 0;
};

class LegalLookupViewTest : public ::testing::Test {
protected:
    LegalLookupViewTest() {
        laws.deliver({lawOf("BGB", {sectionOf("1814", "<b>Voraussetzungen</b>", "Wer <i>Hilfe</i> braucht, bekommt sie."),
                                    sectionOf("1815", "", "Umfang der Hilfe.")})});
        focusReturn.window = &view;
        view.show();
        world.wait(seconds(0.1));
    }
    void type(const std::string& text) {
        auto* field = view.findChild<QLineEdit*>();
        for (const QChar letter : Brand::text(text)) {
            QKeyEvent key(QEvent::KeyPress, 0, Qt::NoModifier, letter);
            QCoreApplication::sendEvent(field, &key);
        }
    }
    void press(QWidget* widget, int code) {
        QKeyEvent key(QEvent::KeyPress, code, Qt::NoModifier);
        QCoreApplication::sendEvent(widget, &key);
        world.time.settle();
    }
    void click(const std::string& action) {
        for (auto* button : view.findChildren<QPushButton*>()) {
            if (button->text() == Brand::text(action)) button->click();
        }
        world.wait(seconds(1));
    }
    using Texts = std::set<std::string>;
    Texts shown() {
        Texts texts;
        for (const auto* label : view.findChildren<QLabel*>()) {
            if (label->isVisibleTo(&view) && !label->text().isEmpty()) texts.insert(Brand::utf8(label->text()));
        }
        return texts;
    }
    static std::string clipboard() { return Brand::utf8(QGuiApplication::clipboard()->text()); }

    QApplication& application = qtApplication(); // Before the view.
    DictationWorld world;
    LawFolders laws;
    LegalCorpus corpus{laws.store, world.time};
    FakePortal portal{world.time};
    LegalUpdateService updates{world.settings, laws.store, corpus, portal, world.time.runtime()};
    FakeFocusReturn focusReturn;
    LegalLookupView view{{.runtime = world.time.runtime(),
                          .corpus = corpus,
                          .updates = updates,
                          .controller = &world.controller,
                          .focusReturn = focusReturn}};
    const std::string fullText = "§ 1814 BGB – <b>Voraussetzungen</b>\nWer <i>Hilfe</i> braucht, bekommt sie.";
};

TEST_F(LegalLookupViewTest, a_section_is_found_read_and_copied_by_keyboard) {
    EXPECT_EQ(shown(), (Texts{"BGB und FamFG durchsuchen", "Paragraph auswählen",
                            "BGB: 2 §§, Stand 02.01.2024 – Zuletzt geändert am 1.2.2023"}));
    type("181");
    press(view.findChild<QLineEdit*>(), Qt::Key_Return);
    EXPECT_EQ(shown(), (Texts{"§ 1814 BGB", "<b>Voraussetzungen</b>"})) << "letter by letter, no markup";
    EXPECT_EQ(view.findChild<QTextEdit*>()->toPlainText(), QStringLiteral("Wer <i>Hilfe</i> braucht, bekommt sie."));
    click("Kopieren");
    EXPECT_EQ(clipboard(), fullText);
    click("Nur Fundstelle");
    EXPECT_EQ(clipboard(), "§ 1814 BGB");

    press(view.findChild<HitList*>(), Qt::Key_Down);
    EXPECT_EQ(shown(), Texts{"§ 1815 BGB"});
    press(&view, Qt::Key_Escape);
    EXPECT_FALSE(view.isVisible());
}

TEST_F(LegalLookupViewTest, a_text_goes_to_the_application_from_before_and_never_into_this_window) {
    type("1814");
    press(view.findChild<QLineEdit*>(), Qt::Key_Return);
    click("An Cursorposition einfügen");
    world.wait(seconds(2));
    EXPECT_EQ(world.inserter.delivered, std::vector<std::string>{fullText});

    view.show();
    focusReturn.isThere = false;
    click("An Cursorposition einfügen");
    EXPECT_EQ(world.inserter.delivered.size(), 1U);
    EXPECT_EQ(clipboard(), fullText);
    EXPECT_TRUE(shown().contains(
        "Kein anderes Fenster mit Schreibmarke gefunden – der Text liegt in der Zwischenablage."));
}

TEST_F(LegalLookupViewTest, new_laws_are_searched_at_once) {
    type("1816");
    press(view.findChild<QLineEdit*>(), Qt::Key_Return);
    EXPECT_TRUE(shown().contains("Kein Treffer"));
    laws.deliver({lawOf("BGB", {sectionOf("1816", "Eignung", "Neu.")})});
    corpus.reload();
    updates.stage.set(LegalUpdateStage::Updated{{"BGB"}});
    world.wait(seconds(0.1));
    EXPECT_EQ(shown(), (Texts{"§ 1816 BGB", "Eignung"}));
}

} // namespace
} // namespace querlin
