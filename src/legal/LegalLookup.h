#pragma once

#include "foundation/Task.h"
#include "legal/LegalLaw.h"

#include <optional>
#include <string_view>

namespace querlin {

/// Finds the text of a section; what the text stages need of the laws. Any thread, unless stated.
class LegalLookup {
public:
    virtual ~LegalLookup() = default;
    /// Ends as soon as the laws can be looked up: at once as a rule, later while they are being loaded for
    /// the first time, and after a few seconds in any case. Await it before the first look. Main thread.
    virtual Task<> ready() { co_return; }
    /// By the section's id and the law's abbreviation; case counts in neither. Of two sections with one id it
    /// is the later.
    virtual std::optional<LegalSection> section(std::string_view id, std::string_view law) = 0;
    /// From the first law that has such a section.
    virtual std::optional<LegalHit> sectionInAnyLaw(std::string_view id) = 0;
};

/// Where there are no law texts.
class NoLaws final : public LegalLookup {
public:
    std::optional<LegalSection> section(std::string_view, std::string_view) override { return std::nullopt; }
    std::optional<LegalHit> sectionInAnyLaw(std::string_view) override { return std::nullopt; }
};

} // namespace querlin
