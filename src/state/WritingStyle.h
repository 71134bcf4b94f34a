#pragma once

#include "foundation/RawValues.h"

#include <array>
#include <cstdint>

namespace querlin {

/// How a dictation is to read. `aktenstil` alone changes the text itself (dates and file numbers);
/// the others speak to the language model.
enum class WritingStyle : std::uint8_t { aktenstil, brief, locker, neutral };

constexpr std::array<EnumRow<WritingStyle>, 4> enumRows(WritingStyle) {
    using enum WritingStyle;
    return {{{aktenstil, "aktenstil", "Aktenstil (Betreuer-Modus)"},
             {brief, "brief", "Brief- und E-Mail-Ton"},
             {locker, "locker", "Locker"},
             {neutral, "neutral", "Neutral"}}};
}

/// What a style does, for the user.
constexpr std::string_view shortDescription(WritingStyle style) {
    using enum WritingStyle;
    switch (style) {
    case aktenstil:
        return "Nüchtern dokumentierend, dritte Person, keine Wertungen.";
    case brief:
        return "Höflich und vollständig ausformuliert, Anrede bleibt erhalten.";
    case locker:
        return "Nah am Gesprochenen, umgangssprachliche Wendungen bleiben.";
    case neutral:
        return "Nur Füllwörter und Zeichensetzung, sonst unverändert.";
    }
    return {};
}

/// What a style asks of the language model.
constexpr std::string_view promptInstruction(WritingStyle style) {
    using enum WritingStyle;
    switch (style) {
    case aktenstil:
        return "Schreibe im Stil eines Aktenvermerks der rechtlichen Betreuung: nüchtern, sachlich, "
               "dokumentierend. Vollständige Sätze, aber keine Ausschmückung. Keine Wertungen und keine "
               "Höflichkeitsfloskeln. Behalte die vom Sprecher gewählte Perspektive und Anrede bei; mache "
               "aus "
               "„ich habe\" kein „es wurde\". Fachbegriffe bleiben Fachbegriffe.";
    case brief:
        return "Schreibe in höflichem, vollständig ausformuliertem Briefton, wie in einer dienstlichen "
               "E-Mail. "
               "Anrede und Grußformel bleiben erhalten, falls diktiert; ergänze keine. Sachlich freundlich, "
               "ohne "
               "Umgangssprache.";
    case locker:
        return "Schreibe natürlich und nah am Gesprochenen. Umgangssprachliche Wendungen dürfen bleiben, "
               "solange der Text sauber lesbar ist.";
    case neutral:
        return "Ändere den Stil nicht. Entferne nur Füllwörter und setze Zeichensetzung. Formuliere nichts "
               "um.";
    }
    return {};
}

/// The style that the earlier setting "formality" stood for: "casual" was `locker`, everything else
/// `aktenstil`.
constexpr WritingStyle writingStyleFromLegacyFormality(std::optional<std::string_view> formality) {
    return formality == "casual" ? WritingStyle::locker : WritingStyle::aktenstil;
}

/// Who cleans the recognised text.
enum class CleanupMode : std::uint8_t { rules, local, none };

constexpr std::array<EnumRow<CleanupMode>, 3> enumRows(CleanupMode) {
    using enum CleanupMode;
    return {{{rules, "rules", "Sofort (regelbasiert)"},
             {local, "local", "Lokales Modell"},
             {none, "none", "Keine Bereinigung"}}};
}

/// What a mode means for the user.
constexpr std::string_view shortSummary(CleanupMode mode) {
    using enum CleanupMode;
    switch (mode) {
    case rules:
        return "Text erscheint ohne Wartezeit. Bereinigt Füllwörter und Zeichensetzung nach festen Regeln – "
               "ohne Modell.";
    case local:
        return "Feinschliff durch ein lokales Modell. Große Modelle brauchen einige Sekunden länger – und "
               "alles "
               "bleibt wie immer auf diesem Rechner.";
    case none:
        return "Das Transkript wird unverändert eingefügt.";
    }
    return {};
}

constexpr bool usesModel(CleanupMode mode) { return mode == CleanupMode::local; }

} // namespace querlin
