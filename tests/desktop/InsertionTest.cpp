#include "desktop/ClipboardInserter.h"
#include "foundation/TaskGroup.h"
#include "support/CapturedLog.h"
#include "support/FakeDesktop.h"
#include "support/ManualTime.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

using Outcome = TextInserter::Outcome;
using FieldKind = DictationContext::FieldKind;

/// What a user may have copied: two items in several forms.
const ClipboardSnapshot copied{
    {{{"text/plain", "alt", ""}, {"application/x-own", std::string("\0\xFF", 2), "ATOM/32"}}, {{"image/png", "bild", ""}}}};
const ClipboardSnapshot copiedLater{{{{"text/plain", "neu", ""}}}};

struct InsertionTest : testing::Test {
    CapturedLog log;
    ManualTime time;
    FakeAccess access;
    FakeDesktop desktop;
    FakeClipboard clipboard{time};
    FakePasteKey key;
    PermissionsManager permissions{time, access};
    ClipboardInserter inserter{{time.runtime(), permissions, desktop, desktop, clipboard, key}};
    TaskGroup tasks;
    std::optional<std::expected<Outcome, InsertError>> outcome;
    Registration target_;
    Registration later_;

    InsertionTest() {
        clipboard.contents = copied;
        targetReadsAfter(seconds(0.01));
    }
    /// The program in front takes the clipboard's text this long after the key.
    void targetReadsAfter(Duration delay) {
        key.onPress = [this, delay] {
            target_ = time.after(delay, [this] {
                pasted = clipboard.text();
                if (clipboard.offer->current) ++clipboard.offer->reads;
                if (desktop.field->record.text) desktop.setText(pasted);
            });
        };
    }
    void begin(std::string text) {
        outcome.reset();
        const auto run = [](InsertionTest& t, std::string what) -> Task<> { t.outcome = co_await t.inserter.insert(std::move(what)); };
        tasks.start(run(*this, std::move(text)));
        time.settle();
    }
    std::expected<Outcome, InsertError> insert(std::string text) {
        begin(std::move(text));
        time.advance(seconds(4));
        return outcome.value();
    }

    std::string pasted;
};

TEST_F(InsertionTest, GivesTheClipboardBackUnlessTheTextIsStillNeededThere) {
    struct Row {
        std::function<void(InsertionTest&)> given;
        Outcome outcome;
        ClipboardSnapshot left;
        const char* reason;
    };
    const ClipboardSnapshot dictated{{{{"text/plain", "Hallo", ""}}}};
    const std::vector<Row> rows = {
        {[](auto&) {}, Outcome::inserted, copied, "all items, all forms"},
        {[](auto& t) { t.clipboard.contents = {}; }, Outcome::inserted, {}, "nothing was there"},
        {[](auto& t) { t.key.onPress = [] {}; }, Outcome::notInserted, dictated, "the field is as it was"},
        {[](auto& t) {
             t.key.works = false;
             t.desktop.isFieldKnown = false;
             t.target_ = t.time.after(seconds(0.1), [&t] { ++t.clipboard.offer->reads; });
         },
         Outcome::notInserted, dictated, "no key could be pressed, whoever reads"},
        {[](auto& t) {
             t.desktop.isFieldKnown = false;
             t.key.onPress = [] {};
             t.key.beforePress = [&t] { ++t.clipboard.offer->reads; };
         },
         Outcome::notInserted, dictated, "only a clipboard manager has read, before the key"},
        {[](auto& t) {
             t.desktop.isFieldKnown = false;
             t.key.onPress = [&t] { t.clipboard.copy(copiedLater); };
         },
         Outcome::notInserted, copiedLater, "another program took the clipboard before anybody could read"},
        {[](auto& t) { t.later_ = t.time.after(seconds(0.4), [&t] { t.clipboard.copy(copiedLater); }); }, Outcome::inserted, copiedLater,
         "what the user copies meanwhile stays"},
        {[](auto& t) { t.desktop.isFieldKnown = false; }, Outcome::unconfirmed, copied, "no field known"},
        {[](auto& t) { t.desktop.focus(FieldKind::secure); }, Outcome::unconfirmed, copied, "a field without a readable text"},
        {[](auto& t) {
             t.key.onPress = [&t] {
                 t.desktop.field->fault = FieldFault::noAnswer;
                 t.clipboard.offer->reads = 1;
             };
         },
         Outcome::unconfirmed, copied, "it has become unreadable"},
    };
    for (const auto& row : rows) {
        later_.reset();
        desktop = FakeDesktop();
        clipboard.contents = copied;
        key = FakePasteKey();
        targetReadsAfter(seconds(0.01));
        row.given(*this);
        EXPECT_EQ(insert("Hallo"), row.outcome) << row.reason;
        EXPECT_EQ(clipboard.contents, row.left) << row.reason;
    }
}

TEST_F(InsertionTest, TouchesNothingWithoutPermissionOrText) {
    EXPECT_EQ(insert(""), Outcome::inserted);
    access.trusted = false;
    EXPECT_EQ(insert("Hallo"), std::unexpected(InsertError::noAccessibilityPermission));
    EXPECT_EQ(clipboard.contents, copied);
    EXPECT_TRUE(key.pressed.empty());
}

TEST_F(InsertionTest, WaitsForASlowReaderButNotForever) {
    desktop.isFieldKnown = false; // so that nobody knows of the text's arrival
    for (const double late : {0.01, 0.05, 0.15, 0.4, 1.0, 1.9}) {
        clipboard.contents = copied;
        targetReadsAfter(seconds(late));
        EXPECT_EQ(insert("Hallo"), Outcome::unconfirmed);
        EXPECT_EQ(pasted, "Hallo") << late;
        EXPECT_EQ(clipboard.contents, copied) << late;
    }
    key.onPress = [] {};
    begin("Hallo");
    time.advance(seconds(2.04));
    EXPECT_EQ(clipboard.text(), "Hallo");
    time.advance(seconds(0.02));
    EXPECT_EQ(outcome, Outcome::notInserted) << "nobody has read";
    EXPECT_EQ(clipboard.text(), "Hallo") << "it can be pasted by hand";
    clipboard.contents = copied;

    key.onPress = [this] { clipboard.offer->reads = 1; };
    begin("Hallo");
    clipboard.offer->beingRead = true;
    time.advance(seconds(1));
    EXPECT_EQ(clipboard.text(), "Hallo") << "a second program is at it";
    clipboard.offer->beingRead = false;
    time.advance(seconds(0.02));
    EXPECT_EQ(clipboard.contents, copied);
}

TEST_F(InsertionTest, TakesTheShortcutOfTheProgram) {
    desktop.field->record.role = FieldRole::terminal;
    insert("ls");
    desktop.isFieldKnown = false;
    insert("ls");
    desktop.front->applicationId = "kitty";
    insert("ls");
    EXPECT_EQ(key.pressed, (std::vector{PasteShortcut::terminal, PasteShortcut::standard, PasteShortcut::terminal}));
}

TEST_F(InsertionTest, KeepsDictatedWordsFromHistoriesUnlessTheyAreRescued) {
    begin("Hallo");
    EXPECT_EQ(clipboard.text(), "Hallo");
    EXPECT_EQ(clipboard.history, ClipboardHistory::skip);
    inserter.placeOnClipboard("gerettet");
    EXPECT_EQ(clipboard.text(), "gerettet");
    EXPECT_EQ(clipboard.history, ClipboardHistory::keep);
}

} // namespace
} // namespace querlin
