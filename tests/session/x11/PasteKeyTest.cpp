// The shortcut that pastes, pressed into real programs.

#include "platform/x11/X11Clipboard.h"
#include "platform/x11/X11PasteKey.h"
#include "platform/x11/X11Workspace.h"
#include "support/CapturedLog.h"
#include "support/Desktop.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

Task<bool> pressWhenFree(PasteKey& key, PasteShortcut shortcut) {
    co_await key.awaitFreeKeyboard();
    const bool isPressed = co_await key.press(shortcut);
    co_return isPressed;
}

struct PasteKeyTest : testing::Test {
    CapturedLog log;
    RunLoop loop;
    X11Workspace workspace;
    X11Clipboard clipboard{loop};
    X11PasteKey pasteKey{loop};
    std::unique_ptr<Program> editor;

    void SetUp() override {
        editor = std::make_unique<Program>(std::vector<std::string>{"mousepad", "--disable-server"});
        ASSERT_TRUE(eventually([this] { return workspace.frontmostApplication().has_value(); }));
        // The editor is ready when it takes what is typed.
        ASSERT_TRUE(eventually([this] {
            shell("xdotool key x");
            return text().starts_with("x");
        }));
        clear();
    }
    void clear() { shell("xdotool key ctrl+a key Delete"); }
    /// What stands in the editor, by its own "select all" and "copy".
    std::string text() {
        clipboard.write({});
        shell("xdotool key ctrl+a key ctrl+c key End");
        std::string copied;
        eventually([&] { return !(copied = shell("timeout 1 xclip -selection clipboard -o")).empty(); }, seconds(0.3));
        return copied;
    }
    bool paste(const std::string& what, PasteShortcut shortcut = PasteShortcut::standard) {
        const auto offer = clipboard.writeText(what, ClipboardHistory::skip);
        await(loop, pressWhenFree(pasteKey, shortcut));
        return eventually([&] { return offer->completedReads() > 0; }, seconds(2));
    }
};

TEST_F(PasteKeyTest, PastesInAnyLayout) {
    for (const auto* layout : {"de", "us", "fr", "us -variant dvorak"}) {
        shell(std::string("setxkbmap -layout ") + layout);
        EXPECT_TRUE(paste("Grüße €")) << layout;
        shell("setxkbmap de");
        EXPECT_EQ(text(), "Grüße €") << layout;
        clear();
    }
    shell("setxkbmap -layout ru");
    EXPECT_TRUE(paste("Text")) << "by Shift+Insert";
}

TEST_F(PasteKeyTest, WaitsForTheUsersFingers) {
    for (const std::string key : {"108", "50", "134"}) {
        shell("xdotool keydown " + key);
        bool isUp = false;
        const auto fingers = loop.after(seconds(0.15), [&] {
            isUp = true;
            shell("xdotool keyup " + key);
        });
        EXPECT_TRUE(paste("Diktat")) << key;
        EXPECT_TRUE(isUp) << key;
    }
    EXPECT_EQ(text(), "DiktatDiktatDiktat");
    EXPECT_EQ(log.lines(), std::vector<std::string>());
}

TEST_F(PasteKeyTest, ReleasesWhatStaysDownAfterASecond) {
    shell("xdotool keydown 108 keydown 50");
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_TRUE(paste("Diktat"));
    EXPECT_GE(std::chrono::steady_clock::now() - begun, seconds(1));
    EXPECT_EQ(text(), "Diktat");
    EXPECT_TRUE(log.has("[insert] 2 gehaltene Tasten wurden zum Einfügen gelöst."));
}

TEST(NoPasteKeyTest, SaysNoWithoutAServer) {
    RunLoop loop;
    CapturedLog log;
    X11PasteKey nowhere(loop, std::make_shared<OwnKeys>(), ":9999");
    EXPECT_FALSE(await(loop, pressWhenFree(nowhere, PasteShortcut::standard)));
    EXPECT_GE(log.countOf("keine Tasten drücken"), 1U);
}

} // namespace
} // namespace querlin
