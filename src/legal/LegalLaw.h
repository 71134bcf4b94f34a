#pragma once

#include "foundation/Time.h"
#include "legal/SharedText.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace querlin {

/// One section (Paragraph) of a law.
struct LegalSection {
    /// Number and small letters without a blank, "1814a"; the key within its law.
    SharedText id;
    /// 0 if it can't be read.
    std::int64_t number = 0;
    SharedText suffix;
    /// As the source writes it: "§ 1814a".
    SharedText label;
    /// May be empty.
    SharedText title;
    /// The headings above it, joined by " / ". May be empty.
    SharedText path;
    /// Paragraphs with an empty line between them, list items on lines of their own, the cells of a table
    /// after a tab each.
    SharedText text;
    /// Whether guardians need it more than others.
    bool priority = false;

    /// "§ 1814a BGB"
    std::string citation(std::string_view law) const;

    bool operator==(const LegalSection&) const = default;
};

/// A law with all of its sections.
struct LegalLaw {
    /// "BGB": its key.
    SharedText abbr;
    SharedText name;
    /// A rank, from the manifest.
    std::int64_t tier = 0;
    /// Its part of the portal's addresses.
    SharedText slug;
    /// What the source says of the last change. May be empty.
    SharedText stand;
    /// When the source was made, "yyyyMMddHHmmss" in the time of Berlin.
    SharedText builddate;
    /// The address of its archive on the portal.
    SharedText source;
    /// In the order of the source.
    std::vector<LegalSection> sections;

    /// Nothing if `builddate` is no date.
    std::optional<Date> buildDate() const;

    bool operator==(const LegalLaw&) const = default;
};

/// A section, and the law that it stands in.
struct LegalHit {
    /// The law's abbreviation.
    SharedText law;
    LegalSection section;

    /// Its identity in a list: "BGB-1814a".
    std::string id() const;

    bool operator==(const LegalHit&) const = default;
};

} // namespace querlin
