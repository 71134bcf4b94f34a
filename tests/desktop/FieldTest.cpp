// What is read of the field at the cursor: its kind, and what the user puts right in it.

#include "desktop/ContextDetector.h"
#include "desktop/CorrectionWatcher.h"
#include "support/CapturedLog.h"
#include "support/FakeDesktop.h"
#include "support/ManualTime.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

using FieldKind = DictationContext::FieldKind;

struct FieldTest : testing::Test {
    CapturedLog log;
    ManualTime time;
    FakeAccess access;
    FakeDesktop desktop;
    PermissionsManager permissions{time, access};
    ContextDetector detector{permissions, desktop, desktop};
    CorrectionWatcher watcher{time.runtime(), permissions, desktop};
    std::vector<std::string> suggestions;

    FieldTest() {
        watcher.setOnSuggestion([this](const CorrectionSuggestion& s) { suggestions.push_back(s.recognized + "→" + s.corrected); });
    }
    /// A watch of a dictated text that now stands in the field.
    void dictate(const std::string& text) {
        desktop.setText(text);
        watcher.watch(text, "Mail");
    }
    /// The field's text at the next look.
    void change(std::string text) {
        desktop.setText(std::move(text));
        time.advance(seconds(1.5));
    }
    bool isWatching() { return time.pendingTimers() > 0; }
};

TEST_F(FieldTest, IsClassifiedBySubroleThenRole) {
    struct Row {
        std::string_view role, subrole;
        FieldKind kind;
    };
    for (const auto& row :
         {Row{AX::textField, AX::secureTextField, FieldKind::secure}, Row{"AXGroup", AX::secureTextField, FieldKind::secure},
          Row{AX::textField, AX::searchField, FieldKind::search}, Row{AX::textArea, "", FieldKind::multiLine},
          Row{AX::textArea, AX::terminal, FieldKind::multiLine}, Row{AX::textField, "", FieldKind::singleLine},
          Row{AX::comboBox, "", FieldKind::singleLine}, Row{"AXButton", "", FieldKind::unknown}}) {
        desktop.field->attributes = {{"AXRole", std::string(row.role)}, {"AXSubrole", std::string(row.subrole)}};
        EXPECT_EQ(detector.capture().field, row.kind) << row.role << row.subrole;
    }
}

TEST_F(FieldTest, IsLookedForInTheDesktopThenInTheApplication) {
    EXPECT_EQ(detector.capture().summary(), "Mail [com.example.mail] · Textbereich");
    const auto field = desktop.field;
    desktop.whole->attributes.clear();
    EXPECT_EQ(detector.capture().field, FieldKind::unknown);
    EXPECT_EQ(log.countOf("[context] AXFocusedUIElement: Fehler -2"), 2U);
    desktop.ofApplication->attributes["AXFocusedUIElement"] = ElementPointer(field);
    EXPECT_EQ(detector.capture().field, FieldKind::multiLine);
    desktop.whole->attributes["AXFocusedUIElement"] = "a text";
    EXPECT_EQ(detector.capture().field, FieldKind::multiLine) << "a value of a wrong kind is none";
    desktop.front->applicationId.reset();
    EXPECT_EQ(detector.capture().summary(), "Mail [ohne Kennung] · Textbereich");
    desktop.front.reset();
    EXPECT_EQ(detector.capture(), DictationContext()) << "no application to ask";
    access.trusted = false;
    desktop.front = {1, "Writer", "writer"};
    const int reads = field->reads;
    EXPECT_EQ(detector.capture(), (DictationContext{"Writer", "writer", FieldKind::unknown}));
    EXPECT_EQ(field->reads, reads) << "nobody is looked into";
}

TEST_F(FieldTest, ProposesAWordThatWasSeenTwice) {
    dictate("Herr Meier kam heute");
    change("Herr May kam heute");
    change("Herr Mayer kam heute");
    EXPECT_TRUE(suggestions.empty()) << "the user was still typing";
    change("Herr Mayer kam heute");
    EXPECT_EQ(suggestions, std::vector<std::string>{"Meier→Mayer"});
    change("Herr Mayer kam heute");
    change("Herr Mayer kam heute");
    EXPECT_EQ(suggestions.size(), 1U) << "once in a watch";
    EXPECT_TRUE(log.has("[learn] Meier→Mayer vorgemerkt, warte auf Bestätigung."));
    EXPECT_TRUE(log.has("[learn] Korrektur erkannt: Meier→Mayer"));
    time.advance(seconds(20));
    EXPECT_FALSE(isWatching()) << "the time is over";
}

TEST_F(FieldTest, ProposesNothingElse) {
    struct Row {
        const char* before;
        std::vector<const char*> looks;
        const char* trace; ///< null: none
        const char* reason;
    };
    for (const auto& row :
         {Row{"Frau Meier kam", {"Frau Mayer kam", "Frau Meier kam", "Frau Mayer kam"}, nullptr, "undone in between"},
          Row{"Frau Meier kam", {"Herr Mayer kam", "Herr Mayer kam"}, "Änderung im Feld, aber keine Ein-Wort-Korrektur.", "two words"},
          Row{"Frau Meier kam", {"Frau M kam", "Frau M kam"}, "Meier→M verworfen: Ergebnis zu kurz.", "one letter"},
          Row{"Frau Meier kam", {"", ""}, "Änderung im Feld, aber keine Ein-Wort-Korrektur.", "all taken away"}}) {
        dictate(row.before);
        for (const auto* look : row.looks) change(look);
        EXPECT_TRUE(suggestions.empty()) << row.reason;
        if (row.trace) {
            EXPECT_GT(log.countOf(row.trace), 0U) << row.reason;
        }
    }
    desktop.setText("Alter Text. Frau Meier kam");
    watcher.watch("Frau Meier kam", "Mail");
    change("Alder Text. Frau Meier kam");
    change("Alder Text. Frau Meier kam");
    EXPECT_TRUE(suggestions.empty());
    EXPECT_TRUE(log.has("[learn] Alter→Alder verworfen: stammt nicht aus dem Diktat."));
}

TEST_F(FieldTest, IsWatchedOnlyWhereItsTextCanBeRead) {
    const std::string longest(4000, 'x');
    struct Row {
        std::function<void(FieldTest&)> given;
        bool watched;
        const char* note;
        const char* reason;
    };
    const std::vector<Row> rows = {
        {[](auto& t) { t.access.trusted = false; }, false, "Keine Bedienungshilfen-Freigabe – keine Beobachtung.", "no permission"},
        {[](auto& t) { t.desktop.whole->attributes.clear(); }, false, "Kein fokussiertes Feld gefunden – keine Beobachtung.", "no field"},
        {[](auto& t) { t.desktop.field->attributes.erase("AXValue"); }, false,
         "Feldinhalt in Mail nicht lesbar (Rolle AXTextArea) – keine Beobachtung.", "no text"},
        {[&](auto& t) { t.desktop.setText(longest); }, true, nullptr, "4000 characters"},
        {[&](auto& t) { t.desktop.setText(longest + "👍🏽"); }, false, nullptr, "4001 characters"},
        {[](auto& t) {
             t.desktop.field->attributes = {{"AXNumberOfCharacters", std::int64_t{20000}}};
             t.desktop.field->rangeText = "kurz";
         },
         true, nullptr, "by its length"},
        {[](auto& t) {
             t.desktop.field->attributes = {{"AXNumberOfCharacters", std::int64_t{20001}}};
             t.desktop.field->rangeText = "kurz";
         },
         false, "Feldinhalt in Mail nicht lesbar (Rolle unbekannt) – keine Beobachtung.", "longer than that"},
    };
    for (const auto& row : rows) {
        desktop = FakeDesktop();
        access.trusted = true;
        row.given(*this);
        watcher.watch("zwei Wörter", "Mail");
        EXPECT_EQ(isWatching(), row.watched) << row.reason;
        if (row.note) {
            EXPECT_EQ(log.lines().back(), std::string("[learn] ") + row.note) << row.reason;
        }
        watcher.stop();
    }
    watcher.watch("Einwort", "Mail");
    EXPECT_FALSE(isWatching());

    desktop = FakeDesktop();
    dictate("zwei Wörter");
    desktop.field->attributes.erase("AXValue");
    time.advance(seconds(1.5));
    EXPECT_FALSE(isWatching()) << "it has become unreadable";
}

} // namespace
} // namespace querlin
