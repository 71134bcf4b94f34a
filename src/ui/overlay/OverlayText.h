#pragma once

#include "cleanup/EffectiveStyle.h"
#include "dictation/DictationPhase.h"

#include <string>

/// Which words the overlay shows.
namespace querlin::OverlayText {

/// What of a dictation decides about them.
struct State {
    const DictationPhase& phase;
    bool isLongDictation = false;
    bool hasLiveText = false;
    const EffectiveStyle& style;
};

/// The line below the phase.
std::string secondLine(const State& state);

} // namespace querlin::OverlayText
