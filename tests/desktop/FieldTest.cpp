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

TEST_F(FieldTest, IsClassifiedByWhatItHoldsThenByItsRole) {
    const std::vector<std::pair<FieldRecord, FieldKind>> rows = {
        {{.role = FieldRole::textField, .isPassword = true, .isSearch = true}, FieldKind::secure},
        {{.role = FieldRole::other, .isPassword = true}, FieldKind::secure},
        {{.role = FieldRole::textField, .isSearch = true}, FieldKind::search},
        {{.role = FieldRole::textArea}, FieldKind::multiLine},
        {{.role = FieldRole::terminal}, FieldKind::multiLine},
        {{.role = FieldRole::textField}, FieldKind::singleLine},
        {{.role = FieldRole::comboBox}, FieldKind::singleLine},
        {{.role = FieldRole::other}, FieldKind::unknown}};
    for (const auto& [record, kind] : rows) {
        desktop.field->record = record;
        EXPECT_EQ(detector.capture().field, kind) << name(record.role);
    }
}

TEST_F(FieldTest, IsUnknownWhereItCannotBeLookedAt) {
    desktop.isFieldKnown = false;
    EXPECT_EQ(detector.capture().field, FieldKind::unknown);
    desktop.isFieldKnown = true;
    desktop.field->fault = FieldFault::noAnswer;
    desktop.front.reset();
    EXPECT_EQ(detector.capture(), DictationContext());
    access.trusted = false;
    const int looks = desktop.field->looks;
    EXPECT_EQ(detector.capture().field, FieldKind::unknown);
    EXPECT_EQ(desktop.field->looks, looks) << "nobody is looked into";
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
    time.advance(seconds(20));
    EXPECT_FALSE(isWatching()) << "the time is over";
    EXPECT_EQ(log.countOf("Meier") + log.countOf("Mayer"), 0U) << "no dictated word in the log";
}

TEST_F(FieldTest, ProposesNothingElse) {
    struct Row {
        const char* before;
        std::vector<const char*> looks;
        const char* reason;
    };
    for (const auto& row :
         {Row{"Frau Meier kam", {"Frau Mayer kam", "Frau Meier kam", "Frau Mayer kam"}, "undone in between"},
          Row{"Frau Meier kam", {"Herr Mayer kam", "Herr Mayer kam"}, "two words"},
          Row{"Frau Meier kam", {"Frau M kam", "Frau M kam"}, "one letter"}, Row{"Frau Meier kam", {"", ""}, "all taken away"}}) {
        dictate(row.before);
        for (const auto* look : row.looks) change(look);
        EXPECT_TRUE(suggestions.empty()) << row.reason;
    }
    desktop.setText("Alter Text. Frau Meier kam");
    watcher.watch("Frau Meier kam", "Mail");
    change("Alder Text. Frau Meier kam");
    change("Alder Text. Frau Meier kam");
    EXPECT_TRUE(suggestions.empty()) << "not of the dictation";
    EXPECT_EQ(log.countOf("Meier") + log.countOf("Alter"), 0U);
}

TEST_F(FieldTest, IsWatchedOnlyWhereItsTextCanBeRead) {
    const std::string longest(4000, 'x');
    struct Row {
        std::function<void(FieldTest&)> given;
        bool watched;
        const char* reason;
    };
    const auto byLength = [](std::int64_t length) {
        return [length](FieldTest& t) {
            t.desktop.field->record.text = std::unexpected(FieldFault::tooLong);
            t.desktop.field->record.length = length;
            t.desktop.field->rangeText = "kurz";
        };
    };
    const std::vector<Row> rows = {
        {[](auto& t) { t.access.trusted = false; }, false, "no permission"},
        {[](auto& t) { t.desktop.isFieldKnown = false; }, false, "no field"},
        {[](auto& t) { t.desktop.field->fault = FieldFault::gone; }, false, "it has gone"},
        {[](auto& t) { t.desktop.focus(FieldKind::secure); }, false, "a password"},
        {[&](auto& t) { t.desktop.setText(longest); }, true, "4000 characters"},
        {[&](auto& t) { t.desktop.setText(longest + "👍🏽"); }, false, "4001 characters"},
        {byLength(20000), true, "by its length"},
        {byLength(20001), false, "longer than that"},
    };
    for (const auto& row : rows) {
        desktop = FakeDesktop();
        access.trusted = true;
        row.given(*this);
        watcher.watch("zwei Wörter", "Mail");
        EXPECT_EQ(isWatching(), row.watched) << row.reason;
        watcher.stop();
    }
    desktop = FakeDesktop();
    dictate("zwei Wörter");
    desktop.field->fault = FieldFault::gone;
    time.advance(seconds(1.5));
    EXPECT_FALSE(isWatching()) << "it has become unreadable";
}

} // namespace
} // namespace querlin
