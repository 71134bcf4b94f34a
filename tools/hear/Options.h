#pragma once

#include "foundation/Time.h"
#include "state/RecognitionChoice.h"

#include <expected>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace querlin {

/// What to recognise, and how.
struct HearOptions {
    static constexpr std::string_view usage =
        "Zeigt, was ein Erkenner versteht: Zwischenstände, während es kommt, und den fertigen Text.\n"
        "\n"
        "  hear [OPTIONEN] DATEI…              Aufnahmen (CAF, M4A, WAV)\n"
        "  hear [OPTIONEN] --microphone        bis zur Eingabetaste, oder --seconds=N lang\n"
        "  hear --devices                      Mikrofone und Erkenner, die da sind\n"
        "\n"
        "  --engine=classic|streaming          der Erkenner (sonst classic)\n"
        "  --device=NAME                       das Mikrofon (sonst die Vorgabe des Systems)\n"
        "  --words=A,B,…                       Wörter, die bevorzugt werden\n"
        "  --vocabulary=N                      dazu N Begriffe des Fachwortschatzes\n"
        "  --models=ORDNER                     Modelle für streaming (sonst die des Benutzers)\n"
        "  --realtime                          Aufnahmen so schnell, wie gesprochen wurde\n";

    TranscriptionEngine engine = TranscriptionEngine::classic;
    std::vector<std::filesystem::path> files;
    bool microphone = false;
    bool devices = false;
    bool realtime = false;
    std::optional<Duration> length; ///< of the recording from the microphone
    std::optional<std::string> device;
    std::vector<std::string> words;
    std::int64_t vocabulary = 0;
    std::optional<std::filesystem::path> models;

    /// The error is in German.
    static std::expected<HearOptions, std::string> parse(std::span<const std::string_view> arguments);
};

} // namespace querlin
