// The clipboard of a real X server among other programs' manners.

#include "ClipboardClient.h"
#include "OwnServer.h"

#include "platform/x11/SelectionForms.h"
#include "platform/x11/X11Clipboard.h"
#include "support/CapturedLog.h"
#include "support/Desktop.h"
#include "support/TempFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace querlin {
namespace {

std::string randomBytes(std::size_t count, std::uint32_t seed) {
    std::string bytes(count, '\0');
    for (auto& byte : bytes) {
        seed = seed * 1664525U + 1013904223U;
        byte = static_cast<char>(seed >> 24U);
    }
    return bytes;
}

/// What an office program offers: text, its own forms, numbers of 16 and 32 bits, pictures, nothing at all.
ClipboardSnapshot::Item officeForms() {
    ClipboardSnapshot::Item item = {{"UTF8_STRING", "Äpfel 👍🏽", "UTF8_STRING/8"},
                                    {"text/plain;charset=utf-8", "Äpfel 👍🏽", "text/plain;charset=utf-8/8"},
                                    {"STRING", "\xC4pfel", "STRING/8"},
                                    {"text/html", "<b>Äpfel</b>", "text/html/8"},
                                    {"application/x-numbers", randomBytes(400, 1), "INTEGER/32"},
                                    {"application/x-short", randomBytes(6, 2), "CARDINAL/16"},
                                    {"application/x-atoms", std::string("\1\0\0\0\2\0\0\0", 8), "ATOM/32"},
                                    {"application/x-nul", std::string("\0a\0\xFF", 4), "application/x-nul/8"},
                                    {"application/x-empty", "", "application/x-empty/8"},
                                    {"application/x-edge", randomBytes(256UZ * 1024, 3), "application/x-edge/8"},
                                    {"application/x-pieces", randomBytes(700'001, 4), "other/type/8"},
                                    {"application/x-words", randomBytes(600'000, 5), "CARDINAL/32"}};
    for (std::uint32_t i = 0; i < 9; ++i) {
        const auto type = fmt::format("application/x-office;number=\"{}\"", i);
        item.push_back({type, randomBytes(997UZ * i, i), type + "/8"});
    }
    item.push_back({"image/png", randomBytes(300'000, 6), "image/png/8"});
    return item;
}

struct ClipboardTest : testing::Test {
    CapturedLog log;
    RunLoop loop;
    X11Clipboard clipboard{loop};

    ClipboardSnapshot capture() { return await(loop, clipboard.capture()); }
    std::shared_ptr<ClipboardOffer> copy(const std::string& text, ClipboardHistory history = ClipboardHistory::keep) {
        return clipboard.writeText(text, history);
    }
};

double secondsSince(Instant begun) { return inSeconds(std::chrono::steady_clock::now() - begun); }

TEST_F(ClipboardTest, GivesEveryFormBackAsItWas) {
    const auto forms = officeForms();
    ASSERT_EQ(forms.size(), 22U);
    ClipboardSnapshot snapshot;
    {
        const CopyingProgram office(forms);
        snapshot = capture();
    }
    EXPECT_EQ(snapshot, ClipboardSnapshot{{forms}});
    EXPECT_TRUE(capture().isEmpty()) << "the program has gone, and its clipboard with it";
    clipboard.write(snapshot);
    EXPECT_EQ(capture(), snapshot) << "our own";
    PastingProgram program;
    EXPECT_EQ(program.targets().size(), forms.size() + 4);
    for (const auto& data : forms) {
        const auto form = SelectionForms::of(data);
        const auto read = program.read(data.type);
        ASSERT_TRUE(read) << data.type;
        EXPECT_EQ(read->bytes, data.bytes) << data.type;
        EXPECT_EQ(program.typeName(*read), form.type);
        EXPECT_EQ(read->format, form.format);
    }
    EXPECT_EQ(program.readMultiple({"UTF8_STRING", "no/such", "text/html"}), (std::vector<std::string>{"Äpfel 👍🏽", "", "<b>Äpfel</b>"}));
    EXPECT_EQ(program.read("no/such"), std::nullopt);
    EXPECT_EQ(program.read("UTF8_STRING", SIZE_MAX, 1), std::nullopt) << "a key that was pressed before these contents were there";
    EXPECT_EQ(log.lines(), std::vector<std::string>());
}

TEST_F(ClipboardTest, CarriesLargeImagesInPieces) {
    const ClipboardSnapshot::Item image = {{"image/png", randomBytes(30'000'000, 7), "image/png/8"}};
    ClipboardSnapshot snapshot;
    const auto begun = std::chrono::steady_clock::now();
    {
        const CopyingProgram owner(image, {.largestPiece = 1'000'000});
        snapshot = capture();
    }
    EXPECT_LT(secondsSince(begun), 2);
    EXPECT_TRUE(snapshot == ClipboardSnapshot{{image}});
    clipboard.write(snapshot);
    PastingProgram first;
    PastingProgram second;
    PastingProgram gone;
    EXPECT_TRUE(gone.read("image/png", 3));
    gone.destroyWindow();
    std::optional<XcbProperty> read;
    std::thread reader([&] { read = second.read("image/png"); });
    EXPECT_TRUE(first.read("image/png")->bytes == image.front().bytes);
    reader.join();
    EXPECT_TRUE(read && read->bytes == image.front().bytes);
    EXPECT_EQ(log.lines(), std::vector<std::string>());
}

TEST_F(ClipboardTest, LeavesOutWhatDoesNotComeInTime) {
    const auto office = officeForms();
    const ClipboardSnapshot::Item pictures = {{"image/bmp", "b", "image/bmp/8"},   {"image/png", "p", "image/png/8"},
                                              {"image/jpeg", "j", "image/jpeg/8"}, {"image/tiff", "t", "image/tiff/8"},
                                              {"x/slow", "s", "x/slow/8"},         {"UTF8_STRING", "Text", "UTF8_STRING/8"}};
    const ClipboardSnapshot::Item others = {
        {"UTF8_STRING", "Text", "UTF8_STRING/8"}, {"x/refused", "x", "x/refused/8"}, {"x/broken", std::string(900'000, 'x'), "x/broken/8"}};
    struct Row {
        ClipboardSnapshot::Item offered;
        CopyingHabits habits;
        ClipboardSnapshot::Item captured;
        double longest;
        const char* reason;
    };
    for (const auto& row : {
             Row{pictures,
                 {.unanswered = {"x/slow"}, .perImage = std::chrono::milliseconds(250)},
                 {pictures[1], pictures[5]},
                 2,
                 "the text, and one image"},
             Row{office, {.unanswered = {"TARGETS"}}, {}, 0.8, "an owner that never answers"},
             Row{office, {.diesAfter = 5}, {office.begin(), office.begin() + 4}, 0.5, "one that dies isn't waited for"},
             Row{others, {.refused = {"x/refused"}, .stopsAfterPieces = 2}, {others[0]}, 2, "a form refused, another broken off"},
         }) {
        const CopyingProgram owner(row.offered, row.habits);
        const auto begun = std::chrono::steady_clock::now();
        const auto snapshot = capture();
        EXPECT_LT(secondsSince(begun), row.longest) << row.reason;
        EXPECT_EQ(snapshot.items.empty() ? ClipboardSnapshot::Item() : snapshot.items[0], row.captured) << row.reason;
    }
}

TEST_F(ClipboardTest, ReadsTheNewOwnerIfItChangesMeanwhile) {
    const ClipboardSnapshot::Item old = {{"UTF8_STRING", "alt", "UTF8_STRING/8"}, {"x/never", "", "x/never/8"}};
    const ClipboardSnapshot::Item fresh = {{"UTF8_STRING", "neu", "UTF8_STRING/8"}};
    const CopyingProgram former(old, {.unanswered = {"x/never"}});
    std::optional<CopyingProgram> latter;
    std::thread copies([&] {
        eventually([&] { return former.answers() == 2; });
        latter.emplace(fresh);
    });
    EXPECT_EQ(capture(), ClipboardSnapshot{{fresh}});
    copies.join();
}

TEST_F(ClipboardTest, CountsWhoHasTakenTheText) {
    const auto offer = copy("Diktat 5 €", ClipboardHistory::skip);
    EXPECT_TRUE(offer->isCurrent());
    PastingProgram history;
    PastingProgram editor;
    EXPECT_EQ(history.targets(), (std::vector<std::string>{"TARGETS", "TIMESTAMP", "MULTIPLE", "UTF8_STRING", "text/plain;charset=utf-8",
                                                           "text/plain", "TEXT", "x-kde-passwordManagerHint"}));
    EXPECT_TRUE(offer->isBeingRead());
    EXPECT_EQ(history.read("x-kde-passwordManagerHint")->bytes, "secret");
    EXPECT_FALSE(offer->isBeingRead()) << "it leaves the text alone";
    (void)editor.targets();
    EXPECT_TRUE(offer->isBeingRead());
    EXPECT_EQ(offer->completedReads(), 0U);
    EXPECT_EQ(editor.read("UTF8_STRING")->bytes, "Diktat 5 €");
    EXPECT_TRUE(eventually([&] { return offer->completedReads() == 1 && !offer->isBeingRead(); }));
    EXPECT_EQ(shell("xclip -selection clipboard -o"), "Diktat 5 €");
    EXPECT_GE(offer->completedReads(), 2U);
    shell("printf kopiert | xclip -selection clipboard -i >/dev/null");
    EXPECT_TRUE(eventually([&] { return !offer->isCurrent(); }));
    const auto contents = capture();
    ASSERT_EQ(contents.items.size(), 1U);
    EXPECT_EQ(contents.items[0].front().bytes, "kopiert");
    const auto next = copy("Übung");
    EXPECT_EQ(editor.read("STRING")->bytes, "\xDC"
                                            "bung");
    clipboard.write({});
    EXPECT_FALSE(next->isCurrent());
    EXPECT_TRUE(capture().isEmpty()) << "nothing empties it";
}

TEST_F(ClipboardTest, IsBeingReadUntilTheLastPieceOrTheReaderStops) {
    const std::string text(1'000'000, 'x');
    const auto offer = copy(text);
    PastingProgram stalled;
    (void)stalled.read("UTF8_STRING", 2);
    EXPECT_TRUE(eventually([&] { return offer->isBeingRead(); }));
    PastingProgram reader;
    EXPECT_EQ(reader.read("UTF8_STRING")->bytes.size(), text.size());
    EXPECT_TRUE(eventually([&] { return offer->completedReads() == 1; }));
    EXPECT_TRUE(offer->isBeingRead());
    copy("etwas anderes");
    EXPECT_FALSE(offer->isCurrent());
    EXPECT_TRUE(eventually([&] { return !offer->isBeingRead(); })) << "after five seconds";
    EXPECT_EQ(log.countOf("aufgehört zu lesen"), 1U);
    EXPECT_EQ(offer->completedReads(), 1U);
}

TEST_F(ClipboardTest, WritesAlsoWhileSomebodyIsWaitedFor) {
    const CopyingProgram owner(officeForms(), {.unanswered = {"text/html"}});
    std::optional<ClipboardSnapshot> captured;
    TaskGroup tasks;
    const auto keep = [](Task<ClipboardSnapshot> task, std::optional<ClipboardSnapshot>& to) -> Task<> {
        to.emplace(co_await std::move(task));
    };
    tasks.start(keep(clipboard.capture(), captured));
    EXPECT_TRUE(eventually([&] { return owner.answers() == 4; }));
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_TRUE(copy("Diktat")->isCurrent());
    EXPECT_LT(secondsSince(begun), 0.2);
    EXPECT_TRUE(serveUntil(loop, [&] { return captured.has_value(); }, seconds(1)));
}

TEST_F(ClipboardTest, LetsAManagerKeepWhatIsNoSecret) {
    for (const auto history : {ClipboardHistory::keep, ClipboardHistory::skip}) {
        const CopyingProgram manager({}, {.manages = "CLIPBOARD_MANAGER"});
        auto ours = std::make_unique<X11Clipboard>(loop);
        ours->writeText("Text", history);
        ours.reset();
        EXPECT_EQ(manager.savesAsked, history == ClipboardHistory::keep ? 1 : 0);
    }
    const CopyingProgram hung({}, {.unanswered = {"SAVE_TARGETS"}, .manages = "CLIPBOARD_MANAGER"});
    auto ours = std::make_unique<X11Clipboard>(loop);
    ours->writeText("Text", ClipboardHistory::keep);
    const auto begun = std::chrono::steady_clock::now();
    ours.reset();
    EXPECT_LT(secondsSince(begun), 0.9);
}

TEST_F(ClipboardTest, OutlivesTheServer) {
    auto server = std::make_unique<OwnServer>();
    X11Clipboard there(loop, server->display());
    const auto offer = there.writeText("Text", ClipboardHistory::keep);
    EXPECT_TRUE(offer->isCurrent());
    server->kill();
    EXPECT_TRUE(eventually([&] { return !offer->isCurrent(); }));
    EXPECT_TRUE(await(loop, there.capture()).isEmpty());
    EXPECT_FALSE(there.writeText("Text", ClipboardHistory::keep)->isCurrent());
    there.write({{officeForms()}});
    EXPECT_EQ(log.countOf("abgerissen"), 1U);
    EXPECT_EQ(log.countOf("nicht erreichbar"), 1U);
}

TEST_F(ClipboardTest, HoldsNobodyUpWithAStoppedServer) {
    const OwnServer server;
    auto there = std::make_unique<X11Clipboard>(loop, server.display());
    there->write({{officeForms()}});
    server.stop();
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_FALSE(there->writeText("Text", ClipboardHistory::keep)->isCurrent());
    EXPECT_LT(secondsSince(begun), 0.5);
    there.reset();
    EXPECT_LT(secondsSince(begun), 3);
}

} // namespace
} // namespace querlin
