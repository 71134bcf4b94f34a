#include "app/SetupReport.h"

#include <fmt/format.h>

namespace querlin::SetupReport {

namespace {

SetupFinding microphone(Machine& machine) {
    const auto input = machine.devices.systemDefaultInput();
    return {.name = "Mikrofon",
            .state = input ? input->name
                           : "Keines gefunden. Ein angeschlossenes Mikrofon wird von selbst bemerkt; sonst "
                             "hilft ein Blick in die Klangeinstellungen.",
            .isFine = input.has_value()};
}

SetupFinding recognition(Machine& machine, const std::filesystem::path& models, TranscriptionEngine engine) {
    if (machine.streaming.isHere("")) {
        const bool isChosen = engine == TranscriptionEngine::streaming;
        return {
            .name = "Spracherkennung",
            .state =
                isChosen
                    ? "Eigenes Sprachmodell"
                    : "Ein eigenes Sprachmodell ist da; gewählt ist noch das Startmodell, das Menschen kaum "
                      "versteht (Einstellung „transcriptionEngine“: „speechAnalyzer“).",
            .isFine = isChosen};
    }
    std::string state = machine.canRecognise()
                            ? "Nur das Startmodell zur Vorführung, das Menschen kaum versteht."
                            : "Das mitgelieferte Startmodell fehlt oder ist beschädigt.";
    state +=
        fmt::format(" Für die Arbeit gehört ein deutsches Sprachmodell in den Ordner {}.", models.string());
    for (const auto& report : machine.streaming.models()) {
        if (!report.model) state += fmt::format("\n„{}“: {}", report.name, report.model.error());
    }
    return {.name = "Spracherkennung", .state = std::move(state), .isFine = false};
}

SetupFinding hotkey(Machine& machine, const std::string& name) {
    const bool canListen = machine.display->canListenToKeys();
    return {.name = "Diktiertaste",
            .state = canListen
                         ? fmt::format("{}, sprechen, loslassen", name)
                         : "Tasten lassen sich hier nicht hören: Das geht bisher nur in einer X11-Sitzung.",
            .isFine = canListen};
}

SetupFinding fields(Machine& machine) {
    const bool canLook = machine.accessibility.isAvailable();
    return {.name = "Tastatur und Eingabefelder",
            .state = canLook ? "Felder anderer Programme können gelesen werden."
                             : "Es fehlt das Paket at-spi2-core: Passwortfelder würden nicht erkannt.",
            .isFine = canLook};
}

SetupFinding laws(const LegalCorpus& corpus) {
    const auto loaded = corpus.extent();
    if (!loaded) return {.name = "Gesetze", .state = "Werden gelesen …", .isFine = true};
    if (loaded->sections == 0)
        return {
            .name = "Gesetze",
            .state =
                "Noch keine Texte da: Sie werden kurz nach dem Start vom Gesetzesportal des Bundes geladen.",
            .isFine = false};
    return {.name = "Gesetze",
            .state = fmt::format("{} Gesetze mit {} Paragraphen", loaded->laws, loaded->sections),
            .isFine = true};
}

} // namespace

std::vector<SetupFinding> make(const Sources& sources) {
    std::vector findings = {
        microphone(sources.machine), recognition(sources.machine, sources.models, sources.engine),
        hotkey(sources.machine, sources.hotkey), fields(sources.machine), laws(sources.corpus)};
    if (sources.settingsTrouble)
        findings.push_back({.name = "Einstellungen", .state = *sources.settingsTrouble, .isFine = false});
    return findings;
}

} // namespace querlin::SetupReport
