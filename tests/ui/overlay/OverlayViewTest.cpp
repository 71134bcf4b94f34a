#include "ui/overlay/OverlayView.h"

#include "support/DictationWorld.h"
#include "support/QtApplication.h"
#include "ui/brand/Brand.h"

#include <algorithm>

#include <QAccessible>

namespace querlin {
namespace {

using Texts = std::vector<std::string>;

class OverlayViewTest : public ::testing::Test {
protected:
    /// What can be read in it, from left to right and from top to bottom.
    Texts texts() {
        Texts found;
        for (const auto* label : view.findChildren<QLabel*>()) {
            if (label->isVisibleTo(&view)) found.push_back(Brand::utf8(label->text()));
        }
        return found;
    }
    bool hasLevelMeter() { return meter()->isVisibleTo(&view); }
    LevelMeter* meter() {
        const auto all = view.findChildren<QWidget*>();
        const auto found = std::ranges::find_if(all, [](QWidget* child) { return dynamic_cast<LevelMeter*>(child) != nullptr; });
        return dynamic_cast<LevelMeter*>(*found);
    }

    QApplication& application = qtApplication(); // Before the view.
    DictationWorld world;
    OverlayView view{world.controller, world.settings};
};

/// One dictation through all its phases.
TEST_F(OverlayViewTest, shows_what_the_controller_publishes) {
    EXPECT_EQ(texts(), Texts({"Bereit", "Bereit"}));

    world.press();
    EXPECT_EQ(texts(), Texts({"Aufnehmen", "Sprechen Sie – Taste loslassen zum Beenden", "Mail", "0:00"}));
    EXPECT_TRUE(hasLevelMeter());

    world.services.transcriber->partial("<b>Hallo</b>");
    world.wait(seconds(61.8));
    const auto& style = world.controller.effectiveStyle().get();
    EXPECT_EQ(texts(), Texts({"Aufnehmen", std::string(displayName(style.style)) + " · " + style.reason, "Mail", "1:01", "<b>Hallo</b>"}));
    EXPECT_EQ(view.findChildren<QLabel*>().last()->textFormat(), Qt::PlainText);

    world.wait(seconds(240));
    EXPECT_EQ(texts()[1], "Langes Diktat – Taste loslassen zum Beenden");
    EXPECT_EQ(texts().size(), 5U) << "the live text stays";

    world.release();
    EXPECT_EQ(texts(), Texts({"Transkribieren", "Erkennung wird abgeschlossen", "<b>Hallo</b>"}));
    EXPECT_FALSE(hasLevelMeter());
    world.wait(seconds(0.5));
    EXPECT_EQ(texts()[1], "Text wird eingesetzt");
    world.wait(seconds(5));
    EXPECT_EQ(texts(), Texts({"Bereit", "Bereit"})) << "text from before isn't shown at rest";
}

} // namespace
} // namespace querlin
