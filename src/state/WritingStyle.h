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
             {local, "local", "Lokal (Apple-Modell)"},
             {none, "none", "Keine Bereinigung"}}};
}

constexpr bool usesModel(CleanupMode mode) { return mode == CleanupMode::local; }

} // namespace querlin
