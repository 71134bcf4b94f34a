#pragma once

#include "legal/LegalLaw.h"
#include "legal/LegalManifest.h"

#include <expected>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Reads one law as the federal law portal writes it (XML 1.0, the portal's own vocabulary, in German).
///
/// Nothing but the given bytes is ever read: a document that declares entities of its own, or uses one that
/// it doesn't declare, is refused, for its text would be another than it says. Any thread.
namespace querlin::LegalXMLParser {

struct Result {
    /// Of the law, in full.
    std::string name;
    /// The first note of the kind "Stand"; may be empty.
    std::string stand;
    /// "yyyyMMddHHmmss" in the time of Berlin.
    std::string builddate;
    /// In the order of the document. Those without text, and all that isn't designated by "§" and a number,
    /// are left out.
    std::vector<LegalSection> sections;
};

struct ParseError {
    /// The XML parser's own words.
    std::string detail;

    /// In German, for the log.
    std::string description() const;
};

/// The whole file; a damaged one gives no part of it. A section within one of the ranges has priority.
std::expected<Result, ParseError> parse(std::string_view document,
                                        std::span<const LegalManifestEntry::Range> priorityRanges);

} // namespace querlin::LegalXMLParser
