#include "platform/x11/HoldKeyStates.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

TEST(HoldKeyStates, MakeHoldsOutOfRawKeys) {
    const auto modifier = [](ModifierKey key) { return HotkeyConfig{HotkeyConfig::Mode::holdModifier, key, ComboHotkey::altSpace}; };
    const auto combo = [](ComboHotkey choice) { return HotkeyConfig{HotkeyConfig::Mode::holdCombo, ModifierKey::altGr, choice}; };
    constexpr int letter = 24;
    struct Row {
        HotkeyConfig config;
        std::vector<std::uint8_t> heldBefore;
        std::vector<int> keys; ///< down, or up if negative
        const char* heard;     ///< "+" pressed, "-" released, "o" another key
        const char* reason;
    };
    const auto altGr = modifier(ModifierKey::altGr);
    const auto altSpace = combo(ComboHotkey::altSpace);
    for (const auto& row : {
             Row{altGr, {}, {108, -108}, "+-", "a hold"},
             Row{altGr, {}, {108, 64, -64, -108}, "+o-", "the other key of the pair"},
             Row{modifier(ModifierKey::leftAlt), {}, {108, 64, -64, -108}, "+-", "left is not right"},
             Row{altGr, {}, {108, 108, letter, letter, -letter, -108}, "+o-", "repeats"},
             Row{altGr, {}, {-108, letter, -letter}, "", "a release without a press, and keys outside of a hold"},
             Row{altGr, {}, {letter, 108, -letter, -108}, "+-", "a key that was down before and goes up"},
             Row{altGr, {108}, {letter, -108, 108}, "+", "held when it began"},
             Row{altSpace, {}, {65, -65}, "", "the key alone"},
             Row{altSpace, {}, {65, 64, -65, -64}, "", "the modifier came too late"},
             Row{altSpace, {}, {50, 64, 65, -64, -50, -65}, "+-", "more modifiers than needed, all let go first"},
             Row{altSpace, {64}, {65, letter, -65}, "+o-", "a modifier that was held when it began"},
             Row{combo(ComboHotkey::controlSpace), {}, {105, 65, -65}, "+-", "either key of a kind"},
             Row{combo(ComboHotkey::superShiftD), {}, {133, 40, -40, 62, 40, -40}, "+-", "both modifiers"},
         }) {
        HoldKeyStates states(row.config);
        HoldKeyStates::Keymap held{};
        for (const auto key : row.heldBefore) held.at(key / 8) |= static_cast<std::uint8_t>(1U << (key % 8));
        states.begin(held);
        std::string heard;
        for (const int key : row.keys) {
            const auto kind = states.take(static_cast<std::uint8_t>(std::abs(key)), key > 0);
            if (kind) heard += "!+-o?"[static_cast<std::size_t>(*kind)];
        }
        EXPECT_EQ(heard, row.heard) << row.reason;
    }
}

} // namespace
} // namespace querlin
