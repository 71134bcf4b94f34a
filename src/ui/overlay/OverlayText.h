#pragma once

#include "cleanup/EffectiveStyle.h"
#include "dictation/DictationPhase.h"

#include <string>

/// The texts of the overlay.
namespace querlin::OverlayText {

/// What the texts depend on.
struct State {
    const DictationPhase& phase;
    bool isLongDictation = false;
    bool hasLiveText = false;
    const EffectiveStyle& style;
};

/// The line below the phase.
std::string secondLine(const State& state);

} // namespace querlin::OverlayText
