#include "legal/LegalUpdateError.h"

#include <fmt/format.h>

namespace querlin {

std::string LegalUpdateError::description() const {
    switch (kind) {
    case Kind::badSource:
        return fmt::format("Ungültige Quelle für {}.", abbr);
    case Kind::empty:
        return fmt::format("{} enthielt keine Paragraphen.", abbr);
    case Kind::compressionFailed:
        return "Gesetzesbestand ließ sich nicht komprimieren.";
    case Kind::notReadable:
        return "Der neue Gesetzesbestand ließ sich nicht zurücklesen; der bisherige bleibt.";
    }
    return {};
}

} // namespace querlin
