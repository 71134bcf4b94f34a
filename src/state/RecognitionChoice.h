#pragma once

#include "foundation/RawValues.h"

#include <array>
#include <cstdint>

namespace querlin {

/// The language that the recogniser listens for.
enum class DictationLanguage : std::uint8_t { german, english, system };

constexpr std::array<EnumRow<DictationLanguage>, 3> enumRows(DictationLanguage) {
    using enum DictationLanguage;
    return {
        {{german, "de-DE", "Deutsch"}, {english, "en-US", "Englisch"}, {system, "system", "Systemsprache"}}};
}

/// The two recognisers: the newer streaming service, and the classic one.
enum class TranscriptionEngine : std::uint8_t { streaming, classic };

constexpr std::array<EnumRow<TranscriptionEngine>, 2> enumRows(TranscriptionEngine) {
    using enum TranscriptionEngine;
    return {{{streaming, "speechAnalyzer", "Streaming-Erkenner (sherpa-onnx)"},
             {classic, "appleSpeech", "Klassischer Erkenner (PocketSphinx)"}}};
}

} // namespace querlin
