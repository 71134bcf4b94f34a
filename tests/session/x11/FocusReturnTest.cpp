// The keyboard goes back to whom it had before, by a real window manager.

#include "OwnServer.h"

#include "platform/x11/X11FocusReturn.h"
#include "platform/x11/X11Workspace.h"
#include "support/CapturedLog.h"

#include <optional>

#include <gtest/gtest.h>
#include <unistd.h>

namespace querlin {
namespace {

/// A window of this very program, as a window manager sees it.
class OwnWindow {
public:
    OwnWindow() : connection_(std::move(*XcbConnection::open({}))), atoms_(*connection_), window_(xcb_generate_id(get())) {
        xcb_create_window(get(), XCB_COPY_FROM_PARENT, window_, connection_->root(), 0, 0, 200, 100, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          XCB_COPY_FROM_PARENT, 0, nullptr);
        const auto process = static_cast<std::uint32_t>(::getpid());
        xcb_change_property(get(), XCB_PROP_MODE_REPLACE, window_, atoms_.atom("_NET_WM_PID"), XCB_ATOM_CARDINAL, 32, 1, &process);
        xcb_map_window(get(), window_);
        connection_->flush();
    }

    std::string id() const { return std::to_string(window_); }

private:
    xcb_connection_t* get() const { return connection_->get(); }

    std::unique_ptr<XcbConnection> connection_;
    XcbAtoms atoms_;
    xcb_window_t window_;
};

struct FocusReturnTest : testing::Test {
    CapturedLog log;
    RunLoop loop;
    X11Workspace workspace;
    std::optional<X11FocusReturn> focusReturn{std::in_place, loop};

    std::int32_t front() {
        const auto application = workspace.frontmostApplication();
        return application ? application->processIdentifier : 0;
    }
    bool comesToFront(pid_t process) {
        return eventually([&] { return front() == process; });
    }
    std::unique_ptr<Program> open(const std::vector<std::string>& command) {
        auto program = std::make_unique<Program>(command);
        EXPECT_TRUE(comesToFront(program->id())) << command.front();
        return program;
    }
    std::unique_ptr<Program> openEditor() { return open({"mousepad", "--disable-server"}); }
    /// The manager may not know the window yet.
    void comeToFront(const OwnWindow& window) {
        EXPECT_TRUE(eventually([&] {
            shell("xdotool windowactivate " + window.id());
            return front() == ::getpid();
        }));
    }
    bool giveBack() { return await(loop, focusReturn->giveBack()); }
    double secondsToRefuse() {
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_FALSE(giveBack());
        return inSeconds(std::chrono::steady_clock::now() - begin);
    }
};

TEST_F(FocusReturnTest, GivesTheKeyboardToTheLastOneThatHadIt) {
    EXPECT_FALSE(giveBack()) << "there is nobody";
    const auto first = openEditor();
    auto second = open({"zenity", "--entry"});
    const OwnWindow own;
    comeToFront(own);
    EXPECT_TRUE(giveBack());
    EXPECT_EQ(front(), second->id());
    EXPECT_TRUE(giveBack()) << "it has the keyboard already";

    shell("xdotool search --onlyvisible --class mousepad windowactivate --sync");
    ASSERT_TRUE(comesToFront(first->id()));
    focusReturn.emplace(loop);
    EXPECT_TRUE(giveBack()) << "it was in front before we began";
    second.reset();
    shell("xdotool getactivewindow windowminimize --sync");
    comeToFront(own);
    EXPECT_TRUE(giveBack()) << "minimised meanwhile";
    EXPECT_EQ(front(), first->id());
}

TEST_F(FocusReturnTest, GivesNothingToWhomHasGoneOrHidesOrBelongsToTheDesktop) {
    const OwnWindow own;
    auto editor = openEditor();
    comeToFront(own);
    editor->signal(SIGKILL);
    EXPECT_TRUE(eventually([] { return shell("xdotool search --class mousepad").empty(); }));
    EXPECT_LT(secondsToRefuse(), 0.5);

    editor = openEditor();
    const auto window = shell("xdotool getactivewindow");
    comeToFront(own);
    shell("xdotool windowunmap --sync " + window);
    EXPECT_LT(secondsToRefuse(), 0.5);
    shell("xdotool windowmap --sync " + window);
    ASSERT_TRUE(comesToFront(editor->id()));
    comeToFront(own);
    EXPECT_TRUE(giveBack()) << "shown again";

    editor = openEditor();
    shell("xprop -id $(xdotool getactivewindow) -f _NET_WM_WINDOW_TYPE 32a -set _NET_WM_WINDOW_TYPE _NET_WM_WINDOW_TYPE_DOCK");
    focusReturn.emplace(loop);
    EXPECT_FALSE(giveBack()) << "a panel";
    EXPECT_EQ(log.lines(), std::vector<std::string>());
}

TEST_F(FocusReturnTest, NeverWaitsLongForAServer) {
    const OwnServer server;
    focusReturn.emplace(loop, server.display());
    EXPECT_FALSE(giveBack());
    server.stop();
    EXPECT_LT(secondsToRefuse(), 1.3) << "it hangs";
    server.kill();
    EXPECT_LT(secondsToRefuse(), 1.3) << "it is gone";
    focusReturn.emplace(loop, ":9999");
    EXPECT_LT(secondsToRefuse(), 1.3) << "there has never been one";
    EXPECT_LE(log.lines().size(), 2U);
}

TEST_F(FocusReturnTest, MayGoWhileSomebodyWaits) {
    const auto editor = openEditor();
    const OwnWindow own;
    comeToFront(own);
    editor->signal(SIGSTOP);
    std::optional<bool> answer;
    const auto keep = [](FocusReturn& focus, std::optional<bool>& result) -> Task<> { result = co_await focus.giveBack(); };
    TaskGroup tasks;
    tasks.start(keep(*focusReturn, answer));
    focusReturn.reset();
    EXPECT_TRUE(serveUntil(loop, [&] { return answer.has_value(); }));
    editor->signal(SIGCONT);
}

} // namespace
} // namespace querlin
