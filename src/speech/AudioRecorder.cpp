#include "speech/AudioRecorder.h"

namespace querlin {

std::string AudioRecorderError::description() const {
    switch (kind) {
    case Kind::engineFailed:
        return "Audio-Engine konnte nicht starten: " + detail;
    case Kind::noInputDevice:
        return "Kein Mikrofon gefunden.";
    case Kind::fileFailed:
        return detail;
    }
    return detail;
}

} // namespace querlin
