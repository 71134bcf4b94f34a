#include "ui/brand/Symbol.h"

#include "dictation/DictationPhase.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace querlin {
namespace {

TEST(DrawingsTest, every_phase_has_a_symbol) {
    using enum DictationPhase::Kind;
    for (const auto kind : {idle, recording, transcribing, enhancing, inserting, notice, error}) {
        const auto name = DictationPhase{.kind = kind, .text = {}}.symbolName();
        EXPECT_EQ(std::ranges::count(Symbol::names(), name), 1) << name;
    }
}

} // namespace
} // namespace querlin
