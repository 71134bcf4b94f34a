#include "ui/overlay/OverlayText.h"

#include "foundation/RawValues.h"

#include <fmt/format.h>

namespace querlin::OverlayText {

namespace {

std::string whileRecording(const State& state) {
    if (state.isLongDictation) return "Langes Diktat – Taste loslassen zum Beenden";
    if (state.hasLiveText) return fmt::format("{} · {}", displayName(state.style.style), state.style.reason);
    return "Sprechen Sie – Taste loslassen zum Beenden";
}

} // namespace

std::string secondLine(const State& state) {
    using enum DictationPhase::Kind;
    switch (state.phase.kind) {
    case notice:
        return "Es wurde nichts aufgenommen";
    case error:
        return "Bitte erneut versuchen";
    case idle:
        return "Bereit";
    case recording:
        return whileRecording(state);
    case transcribing:
        return "Erkennung wird abgeschlossen";
    case enhancing:
        return "Feinschliff durch das Sprachmodell";
    case inserting:
        return "Text wird eingesetzt";
    }
    return {};
}

} // namespace querlin::OverlayText
