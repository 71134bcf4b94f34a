#include "ui/menu/StatusMenu.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

/// The two lines below the status; "(…)" can't be chosen.
std::vector<std::string> firstCommands(const DictationPhase& phase) {
    const auto menu = statusMenu({.phase = phase, .hotkey = "Taste", .lastNotice = {}});
    std::vector<std::string> lines;
    for (std::size_t i = 3; i < 5; ++i) lines.push_back(menu[i].isEnabled ? menu[i].title : "(" + menu[i].title + ")");
    return lines;
}

TEST(StatusMenuTest, the_first_commands_follow_the_phase) {
    using enum DictationPhase::Kind;
    using Lines = std::vector<std::string>;
    for (const auto phase : {idle, notice, error}) {
        EXPECT_EQ(firstCommands({.kind = phase, .text = "x"}), (Lines{"Aufnahme starten", "Diktatverlauf…"})) << static_cast<int>(phase);
    }
    EXPECT_EQ(firstCommands({.kind = recording, .text = {}}), (Lines{"Aufnahme stoppen", "Abbrechen"}));
    for (const auto phase : {transcribing, enhancing, inserting}) {
        EXPECT_EQ(firstCommands({.kind = phase, .text = {}}), (Lines{"(Aufnahme starten)", "Abbrechen"})) << static_cast<int>(phase);
    }
}

} // namespace
} // namespace querlin
