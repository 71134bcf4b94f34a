#include "speech/StreamingTranscriber.h"

namespace querlin {

std::string TranscriptionError::description() const {
    switch (kind) {
    case Kind::unavailable:
        return "Spracherkennung nicht verfügbar: " + detail;
    case Kind::failed:
        return "Transkription fehlgeschlagen: " + detail;
    }
    return detail;
}

} // namespace querlin
