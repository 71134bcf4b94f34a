#include "legal/LegalLaw.h"

#include "foundation/GermanFormat.h"

#include <fmt/format.h>

namespace querlin {

std::string LegalSection::citation(std::string_view law) const {
    return fmt::format("{} {}", label.view(), law);
}

std::optional<Date> LegalLaw::buildDate() const { return berlinStamp(builddate); }

std::string LegalHit::id() const { return fmt::format("{}-{}", law.view(), section.id.view()); }

} // namespace querlin
