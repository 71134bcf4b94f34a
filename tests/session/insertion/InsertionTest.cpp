// Texts pasted into real programs, and what becomes of the user's clipboard.

#include "desktop/ClipboardInserter.h"
#include "desktop/ContextDetector.h"
#include "foundation/ThreadPool.h"
#include "platform/atspi/AtspiAccessibility.h"
#include "platform/x11/X11Clipboard.h"
#include "platform/x11/X11PasteKey.h"
#include "platform/x11/X11Workspace.h"
#include "support/CapturedLog.h"
#include "support/Desktop.h"
#include "support/FakeDesktop.h"
#include "support/TempFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace querlin {
namespace {

using Outcome = TextInserter::Outcome;
using FieldKind = DictationContext::FieldKind;

/// Waits are shorter on it, so that many insertions take little time.
class HastyQueue final : public MainQueue {
public:
    HastyQueue(MainQueue& queue, int factor) : queue_(queue), factor_(factor) {}
    void post(Work work) override { queue_.post(std::move(work)); }
    Registration after(Duration delay, Work work) override { return queue_.after(delay / factor_, std::move(work)); }

private:
    MainQueue& queue_;
    int factor_;
};

/// What a user may have copied from an office program: text, private forms, numbers of 32 bits, a picture.
ClipboardSnapshot richClipboard() {
    ClipboardSnapshot::Item item = {{"UTF8_STRING", "Äpfel 👍🏽", "UTF8_STRING/8"},
                                    {"text/html", "<b>Äpfel</b>", "text/html/8"},
                                    {"application/x-nul", std::string("\0a\0\xFF", 4), "application/x-nul/8"},
                                    {"image/png", std::string(700'000, '\x89'), "image/png/8"}};
    for (unsigned i = 0; i < 18; ++i) {
        const auto type = fmt::format("application/x-office-{}", i);
        item.push_back({type, std::string(100U + 977U * i, static_cast<char>(i)), type + "/8"});
    }
    return {{std::move(item)}};
}

struct InsertionTest : testing::Test {
    TempFolder folder;
    CapturedLog log;
    RunLoop loop;
    HastyQueue hasty{loop, 5};
    SystemClock clock;
    ThreadPool pool{1};
    FakeAccess access;
    X11Workspace workspace;
    AtspiAccessibility accessibility{[this]() -> std::optional<std::int32_t> {
        const auto front = workspace.frontmostApplication();
        return front ? std::optional(front->processIdentifier) : std::nullopt;
    }};
    PermissionsManager permissions{loop, access};
    ContextDetector detector{permissions, accessibility, workspace};
    X11Clipboard clipboard{loop};
    X11PasteKey pasteKey{loop};
    X11Clipboard user{loop}; ///< another program's view of the clipboard
    ClipboardInserter inserter{{Runtime{loop, clock, pool}, permissions, accessibility, workspace, clipboard, pasteKey}};

    /// A program with its window in front; `field` is what the cursor must be in.
    std::unique_ptr<Program> open(std::vector<std::string> command, std::optional<FieldKind> field) {
        auto program = std::make_unique<Program>(std::move(command));
        const auto isReady = [&] {
            const auto context = detector.capture();
            return workspace.frontmostApplication().has_value() && (!field || context.field == *field);
        };
        EXPECT_TRUE(serveUntil(loop, isReady, std::chrono::seconds(20))) << detector.capture().summary();
        return program;
    }
    std::optional<std::string> fieldText() {
        const auto field = accessibility.focusedField();
        const auto record = field ? (*field)->look(FieldLook::contents) : std::unexpected(field.error());
        return record && record->text ? std::optional(*record->text) : std::nullopt;
    }
    ClipboardSnapshot copied() { return await(loop, user.capture()); }
    std::expected<Outcome, InsertError> insert(std::string text) { return await(loop, inserter.insert(std::move(text))); }
};

TEST_F(InsertionTest, ReachesEditorsAndGivesTheWholeClipboardBack) {
    const auto rich = richClipboard();
    user.write(rich);
    const auto editor = open({"mousepad", "--disable-server"}, FieldKind::multiLine);
    for (const std::string text : {"Erster Satz äöüß €. ", "👩🏽‍⚖️ und 𝕏 jenseits der Grundebene\n", "- Punkt"}) {
        const auto before = fieldText().value_or("");
        EXPECT_EQ(insert(text), Outcome::inserted);
        EXPECT_EQ(fieldText(), before + text);
        EXPECT_EQ(copied(), rich);
    }
    const auto letter = std::string(4001, 'x') + " Ende";
    EXPECT_EQ(insert(letter), Outcome::inserted);
    EXPECT_TRUE(fieldText().value_or("").ends_with(letter));
}

TEST_F(InsertionTest, LosesNothingWhenTheFocusMovesBeforeThePaste) {
    const auto file = (folder / "text").string();
    const auto target = open({QUERLIN_TARGET, "5", file}, std::nullopt);
    const auto editor = open({"mousepad", "--disable-server"}, FieldKind::multiLine);
    const auto moves = loop.after(std::chrono::milliseconds(5), [] { shell("xdotool search --name '^Target$' windowactivate --sync"); });
    EXPECT_EQ(insert("Diktat"), Outcome::notInserted) << "the field that was looked at is as it was";
    EXPECT_EQ(contentOf(file), "Diktat\n");
    EXPECT_EQ(shell("xclip -selection clipboard -o"), "Diktat") << "and it can be pasted by hand";
}

TEST_F(InsertionTest, GivesALateTargetTheTextAndTheUserTheClipboard) {
    const auto rich = richClipboard();
    for (const int delay : {10, 50, 150, 400, 1000}) {
        user.write(rich);
        const auto file = (folder / fmt::format("{}", delay)).string();
        const auto target = open({QUERLIN_TARGET, fmt::format("{}", delay), file}, std::nullopt);
        EXPECT_EQ(insert("Diktat"), Outcome::unconfirmed) << delay;
        EXPECT_EQ(contentOf(file), "Diktat\n") << delay;
        EXPECT_EQ(copied(), rich) << delay;
    }
}

TEST_F(InsertionTest, LosesNoneOfTwoHundredUnnoticed) {
    ClipboardInserter quick{{Runtime{hasty, clock, pool}, permissions, accessibility, workspace, clipboard, pasteKey}};
    const auto editor = open({"mousepad", "--disable-server"}, FieldKind::multiLine);
    std::vector<std::string> reported;
    for (int i = 0; i < 200; ++i) {
        const auto text = fmt::format("Satz{}. ", i);
        if (await(loop, quick.insert(text)) == Outcome::inserted) reported.push_back(text);
    }
    const auto all = fieldText().value_or("");
    for (const auto& text : reported) EXPECT_NE(all.find(text), std::string::npos) << text;
    EXPECT_GE(reported.size(), 190U) << "and hardly one is reported lost";
}

TEST_F(InsertionTest, UsesTheKeysOfATerminal) {
    const auto file = (folder / "typed").string();
    const auto terminal =
        open({"xfce4-terminal", "--disable-server", "-x", "sh", "-c", "head -n 1 > '" + file + "'"}, FieldKind::multiLine);
    (void)insert("Guten Tag");
    shell("xdotool key Return");
    EXPECT_TRUE(eventually([&] { return contentOf(file) == "Guten Tag\n"; })) << contentOf(file);
}

} // namespace
} // namespace querlin
