#include "speech/StreamingTranscriber.h"

namespace querlin {

std::string TranscriptionError::description() const {
    switch (kind) {
    case Kind::unavailable:
        return "Spracherkennung nicht verfügbar: " + detail;
    case Kind::failed:
        return "Transkription fehlgeschlagen: " + detail;
    case Kind::notConfigured:
        return detail;
    case Kind::notAuthorized:
        return "Keine Berechtigung für Spracherkennung.";
    case Kind::noSpeechDetected:
        return "Nichts verstanden.";
    }
    return detail;
}

} // namespace querlin
