#include "ui/overlay/FloatingPanel.h"

#include "platform/x11/toolkit/X11Surfaces.h"
#include "support/QtApplication.h"
#include "support/TempFolder.h"

#include <fstream>

#include <QCursor>
#include <QScreen>
#include <QVBoxLayout>

namespace querlin {
namespace {

/// A content of adjustable preferred size.
class Block final : public VisualEffectView {
public:
    Block() : VisualEffectView(14) {}
    QSize sizeHint() const override { return wish; }
    QSize wish{440, 58};
};

/// The part of the panel that is seen, without its shadow.
QRect shownAt(const FloatingPanel& panel) {
    const auto* content = panel.content();
    return {panel.mapToGlobal(content->pos()), content->size()};
}

/// Two screens side by side, of which the toolkit's drawing into memory knows by a file.
class FloatingPanelTest : public ::testing::Test {
protected:
    FloatingPanelTest() {
        const auto file = folder.path() / "Bildschirme.json";
        std::ofstream(file) << R"({"screens": [
            {"name": "links", "x": 0, "y": 0, "width": 1280, "height": 800, "logicalDpi": 96, "dpr": 1},
            {"name": "rechts", "x": 1280, "y": 0, "width": 1000, "height": 600, "logicalDpi": 96, "dpr": 1}]})";
        qunsetenv("DISPLAY");
        qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + QByteArray::fromStdString(file.string()));
        qtApplication();
    }
    TempFolder folder;
};

TEST_F(FloatingPanelTest, stands_at_the_bottom_of_the_screen_with_the_mouse) {
    auto* block = new Block;
    X11Surfaces surfaces;
    FloatingPanel panel(block, FloatingPanel::Behaviour::onlyShows, QStringLiteral("Tafel"), surfaces);
    struct Case {
        QPoint mouse;
        QRect shown;
    };
    const std::array cases = {Case{{100, 100}, {420, 800 - 110 - 58, 440, 58}}, Case{{1700, 300}, {1280 + 280, 600 - 110 - 58, 440, 58}},
                              Case{{640, 799}, {420, 800 - 110 - 58, 440, 58}}};
    for (const auto& [mouse, shown] : cases) {
        QCursor::setPos(mouse);
        panel.positionAtBottomCenter();
        panel.orderFront();
        QCoreApplication::processEvents();
        EXPECT_EQ(shownAt(panel), shown) << mouse.x();
    }

    block->wish = {440, 133};
    block->updateGeometry();
    QCursor::setPos(1700, 300); // The mouse has gone on; the panel stays where it is.
    QCoreApplication::processEvents();
    EXPECT_EQ(shownAt(panel), QRect(420, 800 - 110 - 133, 440, 133)) << "grows upwards";
}

} // namespace
} // namespace querlin
