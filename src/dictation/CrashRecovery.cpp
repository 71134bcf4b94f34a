#include "dictation/CrashRecovery.h"

#include "dictation/DictationRescue.h"

namespace querlin::CrashRecovery {

namespace {

constexpr std::string_view reason = "Nach einem Absturz gefunden";
constexpr std::string_view placeholder = "(nur Tonaufnahme – nach einem Absturz gefunden)";

} // namespace

std::size_t rescueLeftBehind(const RecordingFolder& recordings, RescueFolder& rescueFolder,
                             Notifier& notifier) {
    std::size_t rescued = 0;
    for (auto& recording : recordings.leftBehind()) {
        auto text = recording.text();
        if (text.empty()) text = placeholder;
        const auto result = rescueFolder.keep(text, std::move(recording));
        if (result.textFile) ++rescued;
        RescueReport::writeToLog(text, reason, result);
        RescueReport::notify(notifier, reason,
                             result.textFile ? "Der Text liegt im Rettungsordner."
                                             : "Der Rettungsordner ist nicht beschreibbar.");
    }
    return rescued;
}

} // namespace querlin::CrashRecovery
