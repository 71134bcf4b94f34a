#include "ui/brand/Symbol.h"

#include "dictation/DictationPhase.h"
#include "support/QtApplication.h"

#include <algorithm>

#include <QImage>

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

TEST(DrawingsTest, every_symbol_is_whole_and_every_phase_has_one) {
    qtApplication();
    for (const auto name : Symbol::names()) {
        const auto ink = inkOf(Symbol::pixmap(name, 96, Qt::black).toImage());
        EXPECT_GE(std::max(ink.width(), ink.height()), 56) << name;
        EXPECT_TRUE(QRect(1, 1, 94, 94).contains(ink)) << name << " is cut off";
    }
    using enum DictationPhase::Kind;
    for (const auto kind : {idle, recording, transcribing, enhancing, inserting, notice, error}) {
        const auto name = DictationPhase{.kind = kind, .text = {}}.symbolName();
        EXPECT_EQ(std::ranges::count(Symbol::names(), name), 1) << name;
    }
    EXPECT_TRUE(inkOf(Symbol::pixmap("no.such.symbol", 96, Qt::black).toImage()).isEmpty());
}

} // namespace
} // namespace querlin
