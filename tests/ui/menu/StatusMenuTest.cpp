#include "ui/menu/StatusMenu.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

/// One line for each entry: "-" parts, "(…)" can't be chosen, "Strg+…" is its key.
std::vector<std::string> linesOf(const std::vector<MenuEntry>& menu) {
    std::vector<std::string> lines;
    for (const auto& entry : menu) {
        if (entry.isSeparator()) {
            lines.emplace_back("-");
            continue;
        }
        auto line = entry.isEnabled ? entry.title : "(" + entry.title + ")";
        if (entry.key != 0) line += std::string(" Strg+") + entry.key;
        lines.push_back(line);
        for (const auto& inner : linesOf(entry.submenu)) lines.push_back("  " + inner);
    }
    return lines;
}

using Lines = std::vector<std::string>;

TEST(StatusMenuTest, at_rest_it_has_all_that_can_be_done) {
    EXPECT_EQ(linesOf(statusMenu({.phase = {}, .hotkey = "Rechte Umschalttaste", .lastNotice = {}})),
              (Lines{"(Status: Bereit)",
                     "(Hotkey: Rechte Umschalttaste)",
                     "-",
                     "Aufnahme starten",
                     "Diktatverlauf…",
                     "Gesetze nachschlagen… Strg+l",
                     "-",
                     "Einstellungen… Strg+,",
                     "Berechtigungen prüfen…",
                     "Die Mandolan kennenlernen…",
                     "-",
                     "Hilfe & Diagnose",
                     "  Diagnose ins Protokoll schreiben",
                     "  Engine-Vergleich ausführen…",
                     "  Kettenprüfung ausführen…",
                     "  Feldbeobachtung prüfen…",
                     "  -",
                     "  Protokoll öffnen",
                     "-",
                     "Gesetzesstände aktualisieren…",
                     "Nach Updates suchen…",
                     "Über Querlin",
                     "Querlin beenden Strg+q"}));
}

TEST(StatusMenuTest, warnings_stand_between_status_and_commands) {
    const auto lines = linesOf(statusMenu({.phase = DictationPhase::error("Mikrofon-Zugriff fehlt"),
                                           .hotkey = "Taste",
                                           .isHotkeyBlocked = true,
                                           .lastNotice = "Modell antwortet nicht",
                                           .hasLastText = true}));
    EXPECT_EQ(Lines(lines.begin(), lines.begin() + 10),
              (Lines{"(Status: Mikrofon-Zugriff fehlt)", "(Hotkey: Taste)", "-", "⚠︎ Bedienungshilfen fehlen – Hotkey inaktiv", "-",
                     "Letzter Fehler: Modell antwortet nicht", "-", "Aufnahme starten", "Letzten Text kopieren", "Diktatverlauf…"}));
}

TEST(StatusMenuTest, the_first_command_follows_the_phase) {
    using enum DictationPhase::Kind;
    struct Row {
        DictationPhase::Kind phase;
        Lines commands;
    };
    const std::vector<Row> rows = {
        {idle, {"Aufnahme starten", "Diktatverlauf…"}},      {recording, {"Aufnahme stoppen", "Abbrechen"}},
        {transcribing, {"(Aufnahme starten)", "Abbrechen"}}, {enhancing, {"(Aufnahme starten)", "Abbrechen"}},
        {inserting, {"(Aufnahme starten)", "Abbrechen"}},    {notice, {"Aufnahme starten", "Diktatverlauf…"}},
        {error, {"Aufnahme starten", "Diktatverlauf…"}},
    };
    for (const auto& [phase, commands] : rows) {
        const auto lines = linesOf(statusMenu({.phase = {.kind = phase, .text = "x"}, .hotkey = "Taste", .lastNotice = {}}));
        EXPECT_EQ(Lines(lines.begin() + 3, lines.begin() + 5), commands) << static_cast<int>(phase);
    }
}

} // namespace
} // namespace querlin
