#include "dictation/DictationRescue.h"

#include "foundation/Characters.h"
#include "state/DiagnosticsLog.h"

#include <fmt/format.h>

namespace querlin {

RescueFolder::Result DictationRescue::rescue(std::string_view text, std::optional<RecordingFile> recording,
                                             std::string_view reason) {
    inserter_.placeOnClipboard(text);
    const auto result = folder_.keep(text, std::move(recording));
    RescueReport::writeToLog(text, reason, result);
    RescueReport::notify(notifier_, reason,
                         result.textFile ? "Der Text liegt in der Zwischenablage und im Rettungsordner."
                                         : "Der Text liegt in der Zwischenablage.");
    return result;
}

void DictationRescue::keepIncomplete(std::string_view text, std::optional<RecordingFile> recording) {
    constexpr std::string_view reason = "Die Spracherkennung ist mitten im Diktat ausgefallen";
    const auto result = folder_.keep(text, std::move(recording));
    RescueReport::writeToLog(text, reason, result);
    notifier_.post("Diktat vielleicht unvollständig",
                   fmt::format("{}. Bitte den Text prüfen.{}", reason,
                               result.audioFile ? " Die Tonaufnahme liegt im Rettungsordner." : ""));
}

namespace RescueReport {

namespace {

/// Some reasons are errors' own sentences.
std::string_view clause(std::string_view reason) {
    if (reason.ends_with('.')) reason.remove_suffix(1);
    return reason;
}

} // namespace

void writeToLog(std::string_view text, std::string_view reason, const RescueFolder::Result& result) {
    auto line = fmt::format("{} – {} Wörter gerettet", clause(reason), countWords(text));
    if (result.textFile) line += " → " + result.textFile->filename().string();
    DiagnosticsLog::note("rescue", line);
}

void notify(Notifier& notifier, std::string_view reason, std::string_view whereabouts) {
    notifier.post("Diktat nicht eingefügt", fmt::format("{}. {}", clause(reason), whereabouts));
}

} // namespace RescueReport

} // namespace querlin
