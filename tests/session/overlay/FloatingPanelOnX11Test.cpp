#include "ui/overlay/FloatingPanel.h"

#include "platform/x11/toolkit/X11Surfaces.h"
#include "support/Desktop.h"
#include "support/QtApplication.h"
#include "ui/overlay/OverlayMetrics.h"

#include <fmt/format.h>

#include <QElapsedTimer>
#include <QPainter>
#include <QScreen>

namespace querlin {
namespace {

constexpr QColor ours(200, 0, 200);

/// A content that can be told from everything else on the screen.
class Block final : public VisualEffectView {
public:
    Block() : VisualEffectView(OverlayMetrics::cornerRadius) {}
    QSize sizeHint() const override { return {OverlayMetrics::width, OverlayMetrics::compactHeight}; }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(ours);
        painter.setPen(Qt::NoPen);
        painter.drawRoundedRect(rect(), cornerRadius(), cornerRadius());
    }
};

QColor onScreen(QPoint point) {
    return QGuiApplication::primaryScreen()->grabWindow(0, point.x(), point.y(), 1, 1).toImage().pixelColor(0, 0);
}
std::string activeWindow() { return shell("xdotool getactivewindow getwindowname"); }

/// The overlay's window among real ones, before a window manager.
class FloatingPanelOnX11Test : public ::testing::Test {
protected:
    void SetUp() override {
        if (!isInVirtualDesktop()) GTEST_SKIP() << "needs tools/virtual-desktop";
        qtApplication();
        openEditor();
    }
    /// A window at a known place, with the focus.
    void openEditor() {
        editor.emplace(std::vector<std::string>{"zenity", "--text-info", "--editable", "--title=Ziel", "--width=700", "--height=500"});
        ASSERT_TRUE(until([] { return activeWindow() == "Ziel"; }));
        shell("xdotool search --name '^Ziel$' windowmove 300 260");
    }
    static bool until(const std::function<bool()>& reached) {
        return eventually([&] {
            QCoreApplication::processEvents();
            return reached();
        });
    }
    bool show(FloatingPanel& panel) {
        panel.positionAtBottomCenter();
        panel.orderFront();
        return until([this] { return onScreen(middle) == ours; });
    }

    /// Of the panel on the desktop's one screen of 1280 x 800.
    const QPoint middle{640, 800 - OverlayMetrics::bottomInset - OverlayMetrics::compactHeight / 2};
    X11Surfaces surfaces;
    std::optional<Program> editor;
};

TEST_F(FloatingPanelOnX11Test, the_overlay_takes_neither_focus_nor_clicks) {
    FloatingPanel panel(new Block, FloatingPanel::Behaviour::onlyShows, QStringLiteral("Querlin Overlay"), surfaces);
    ASSERT_TRUE(show(panel));
    EXPECT_EQ(activeWindow(), "Ziel");

    shell(fmt::format("xdotool mousemove {} {} click 1 type hallo", middle.x(), middle.y()));
    shell("xdotool key ctrl+a ctrl+c");
    EXPECT_TRUE(until([] { return shell("timeout 1 xclip -o -selection clipboard") == "hallo"; }))
        << "keys and clicks reach the editor behind it";
    EXPECT_EQ(activeWindow(), "Ziel");
    EXPECT_FALSE(panel.isActiveWindow());
}

TEST_F(FloatingPanelOnX11Test, the_overlay_is_above_a_window_that_fills_the_screen) {
    FloatingPanel panel(new Block, FloatingPanel::Behaviour::onlyShows, QStringLiteral("Querlin Overlay"), surfaces);
    QWidget slides;
    slides.setWindowTitle(QStringLiteral("Voll"));
    slides.setPalette(QPalette(Qt::yellow));
    slides.showFullScreen();
    ASSERT_TRUE(until([] { return onScreen({5, 795}) == Qt::yellow && activeWindow() == "Voll"; }));
    EXPECT_TRUE(show(panel));
    EXPECT_EQ(activeWindow(), "Voll");
    panel.orderOut();
    EXPECT_TRUE(until([this] { return onScreen(middle) != ours; }));
    EXPECT_TRUE(show(panel)) << "again, with the same window";
}

/// A question can be answered by a click and by the keyboard, but doesn't take the focus when it comes.
TEST_F(FloatingPanelOnX11Test, a_question_gets_the_focus_by_a_click_only) {
    FloatingPanel panel(new Block, FloatingPanel::Behaviour::asks, QStringLiteral("Frage"), surfaces);
    ASSERT_TRUE(show(panel));
    EXPECT_EQ(activeWindow(), "Ziel");
    shell(fmt::format("xdotool mousemove {} {} click 1", middle.x(), middle.y()));
    EXPECT_TRUE(until([&] { return panel.isActiveWindow(); }));
}

} // namespace
} // namespace querlin
