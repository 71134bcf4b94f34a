#include "dictation/DictationPhase.h"

#include <array>

namespace querlin {

namespace {

struct Appearance {
    std::string_view statusText; ///< empty: the phase's own text
    std::string_view symbolName;
    bool isBusy;
};

/// In the order of the kinds.
constexpr std::array<Appearance, 7> appearances = {{
    {"Bereit", "mic", false},
    {"Aufnehmen", "mic.fill", true},
    {"Transkribieren", "waveform", true},
    {"Nachbearbeiten", "sparkles", true},
    {"Einfügen", "text.cursor", true},
    {"", "info.circle", false},
    {"", "exclamationmark.triangle", false},
}};

const Appearance& appearance(DictationPhase::Kind kind) {
    return appearances.at(static_cast<std::size_t>(kind));
}

} // namespace

bool DictationPhase::isBusy() const { return appearance(kind).isBusy; }

std::string_view DictationPhase::statusText() const {
    const auto label = appearance(kind).statusText;
    return label.empty() ? std::string_view(text) : label;
}

std::string_view DictationPhase::symbolName() const { return appearance(kind).symbolName; }

} // namespace querlin
