#pragma once

#include "foundation/Json.h"
#include "foundation/Time.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace querlin {

/// What is known of one law's version.
struct LegalManifestEntry {
    std::string abbr;
    std::string slug;
    /// The address of its archive on the portal.
    std::string source;
    std::int64_t tier = 0;
    /// Pairs of section numbers, from and to, that guardians need more than others.
    std::vector<std::vector<std::int64_t>> priorityRanges;
    std::string builddate;
    std::string stand;
    /// What the portal last said of its age; empty if the law has never been loaded from there.
    std::string lastModified;
    std::int64_t sectionCount = 0;
    /// Of the archive as delivered; only carried through.
    std::string sha256;

    using Range = std::pair<std::int64_t, std::int64_t>;
    /// The ranges, both ends included; what isn't a pair in ascending order is left out.
    std::vector<Range> ranges() const;
    /// Nothing if `builddate` is no date.
    std::optional<Date> buildDate() const;

    bool operator==(const LegalManifestEntry&) const = default;
};

JsonValue toJson(const LegalManifestEntry& entry);
std::optional<LegalManifestEntry> readJson(const JsonValue& json, const LegalManifestEntry* tag);

/// Which laws there are, and which version of each.
struct LegalManifest {
    /// The day of delivery, or of the last update, "2026-03-14".
    std::string generated;
    std::vector<LegalManifestEntry> laws;

    bool operator==(const LegalManifest&) const = default;
};

JsonValue toJson(const LegalManifest& manifest);
std::optional<LegalManifest> readJson(const JsonValue& json, const LegalManifest* tag);

} // namespace querlin
