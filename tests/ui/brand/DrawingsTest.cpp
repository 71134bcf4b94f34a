#include "ui/brand/BrandMark.h"
#include "ui/brand/Symbol.h"

#include "dictation/DictationPhase.h"
#include "support/QtApplication.h"

#include <algorithm>

#include <QImage>
#include <QPainter>

namespace querlin {
namespace {

/// The smallest rectangle with all that is painted.
QRect inkOf(const QImage& image) {
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y).alpha() > 8) ink |= QRect(x, y, 1, 1);
        }
    }
    return ink;
}

class DrawingsTest : public ::testing::Test {
protected:
    DrawingsTest() { qtApplication(); }
};

TEST_F(DrawingsTest, every_symbol_fills_its_square_and_nothing_of_it_is_cut_off) {
    for (const auto name : Symbol::names()) {
        const auto ink = inkOf(Symbol::pixmap(name, 96, Qt::black).toImage());
        EXPECT_GE(std::max(ink.width(), ink.height()), 56) << name;
        EXPECT_TRUE(QRect(1, 1, 94, 94).contains(ink)) << name;
    }
    EXPECT_TRUE(inkOf(Symbol::pixmap("no.such.symbol", 96, Qt::black).toImage()).isEmpty());
}

TEST_F(DrawingsTest, every_phase_has_its_symbol) {
    using enum DictationPhase::Kind;
    for (const auto kind : {idle, recording, transcribing, enhancing, inserting, notice, error}) {
        const auto name = DictationPhase{.kind = kind, .text = {}}.symbolName();
        EXPECT_EQ(std::ranges::count(Symbol::names(), name), 1) << name;
    }
}

/// The small icon is the microphone alone, in the middle; from 48 on the section sign stands beside it.
TEST_F(DrawingsTest, the_mark_has_its_proportions) {
    for (const auto& [sign, left, right] :
         {std::tuple{BrandMark::SectionSign::without, 58, 142}, std::tuple{BrandMark::SectionSign::with, 27, 185}}) {
        QImage image(200, 200, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        BrandMark::draw(painter, QRectF(0, 0, 200, 200), Qt::black, sign);
        painter.end();
        const auto ink = inkOf(image);
        EXPECT_NEAR(ink.top(), 20, 2) << "the capsule ends at 0.9 of the height";
        EXPECT_NEAR(ink.bottom(), 180, 2) << "the base is at 0.135, with half a stroke below";
        EXPECT_NEAR(ink.left(), left, 4);
        EXPECT_NEAR(ink.right(), right, 12);
    }
    EXPECT_EQ(BrandMark::statusItemImage(17, Qt::black).size(), QSize(20, 17));
    EXPECT_EQ(BrandMark::statusItemImage(17, Qt::black, 2).size(), QSize(39, 34));
}

/// Rounder than a square, squarer than a circle.
TEST_F(DrawingsTest, the_icon_is_a_superellipse) {
    const auto path = BrandMark::squirclePath(QRectF(0, 0, 100, 100));
    EXPECT_EQ(path.elementCount(), 361);
    EXPECT_TRUE(path.contains(QPointF(92, 92))) << "outside of a circle";
    EXPECT_FALSE(path.contains(QPointF(95, 95))) << "inside of a square";
    const auto ink = inkOf(BrandMark::appIcon(256));
    EXPECT_NEAR(ink.left(), 25, 1);
    EXPECT_NEAR(ink.width(), 206, 2);
}

} // namespace
} // namespace querlin
