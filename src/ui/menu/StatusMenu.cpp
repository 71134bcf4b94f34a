#include "ui/menu/StatusMenu.h"

#include "ui/brand/Brand.h"

#include <fmt/format.h>

namespace querlin {

namespace {

MenuEntry entry(std::string title, MenuCommand command, char key = 0) {
    return {.title = std::move(title), .command = command, .isEnabled = true, .key = key, .submenu = {}};
}
MenuEntry line(std::string title) {
    return {
        .title = std::move(title), .command = MenuCommand::none, .isEnabled = false, .key = 0, .submenu = {}};
}
MenuEntry separator() { return line({}); }

MenuEntry toggle(const DictationPhase& phase) {
    const bool isRecording = phase.is(DictationPhase::Kind::recording);
    auto made = entry(isRecording ? "Aufnahme stoppen" : "Aufnahme starten", MenuCommand::toggleDictation);
    made.isEnabled = isRecording || !phase.isBusy();
    return made;
}

MenuEntry helpAndDiagnostics() {
    auto made = entry("Hilfe & Diagnose", MenuCommand::none);
    made.submenu = {entry("Diagnose ins Protokoll schreiben", MenuCommand::writeDiagnostics),
                    entry("Engine-Vergleich ausführen…", MenuCommand::runBenchmark),
                    entry("Kettenprüfung ausführen…", MenuCommand::runProbe),
                    entry("Feldbeobachtung prüfen…", MenuCommand::runFieldProbe),
                    separator(),
                    entry("Protokoll öffnen", MenuCommand::openLog)};
    return made;
}

} // namespace

std::vector<MenuEntry> statusMenu(const StatusMenuState& state) {
    std::vector menu = {line(fmt::format("Status: {}", state.phase.statusText())),
                        line(fmt::format("Hotkey: {}", state.hotkey))};
    const auto add = [&menu](MenuEntry added) { menu.push_back(std::move(added)); };
    if (state.isHotkeyBlocked) {
        add(separator());
        add(entry("⚠︎ Bedienungshilfen fehlen – Hotkey inaktiv", MenuCommand::openAccessibilitySettings));
    }
    if (state.lastNotice) {
        add(separator());
        add(entry(fmt::format("Letzter Fehler: {}", *state.lastNotice), MenuCommand::clearNotice));
    }
    add(separator());
    add(toggle(state.phase));
    if (state.phase.isBusy()) add(entry("Abbrechen", MenuCommand::cancelDictation));
    if (state.hasLastText) add(entry("Letzten Text kopieren", MenuCommand::copyLastText));
    add(entry("Diktatverlauf…", MenuCommand::openHistory));
    add(entry("Gesetze nachschlagen…", MenuCommand::openLegal, 'l'));
    add(separator());
    add(entry("Einstellungen…", MenuCommand::openSettings, ','));
    add(entry("Berechtigungen prüfen…", MenuCommand::openOnboarding));
    add(entry(fmt::format("Die {} kennenlernen…", Brand::suiteName), MenuCommand::openSuite));
    add(separator());
    add(helpAndDiagnostics());
    add(separator());
    add(entry("Gesetzesstände aktualisieren…", MenuCommand::checkLaws));
    add(entry("Nach Updates suchen…", MenuCommand::checkForUpdates));
    add(entry(fmt::format("Über {}", Brand::productName), MenuCommand::openAbout));
    add(entry(fmt::format("{} beenden", Brand::productName), MenuCommand::quit, 'q'));
    return menu;
}

} // namespace querlin
