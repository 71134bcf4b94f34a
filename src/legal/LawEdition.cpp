#include "legal/LawEdition.h"

#include "legal/LegalUpdateError.h"
#include "legal/LegalXMLParser.h"
#include "legal/ZipReader.h"

#include <algorithm>

namespace querlin {

std::expected<LegalLaw, std::string> lawFromArchive(const LegalManifestEntry& entry,
                                                    std::string_view archive) {
    const auto document = ZipReader::firstFile(archive, ".xml");
    if (!document) return std::unexpected(document.error().description());
    auto parsed = LegalXMLParser::parse(*document, entry.ranges());
    if (!parsed) return std::unexpected(parsed.error().description());
    if (parsed->sections.empty())
        return std::unexpected(LegalUpdateError{LegalUpdateError::Kind::empty, entry.abbr}.description());
    LegalLaw law;
    law.abbr = entry.abbr;
    law.name = parsed->name.empty() ? entry.abbr : parsed->name;
    law.tier = entry.tier;
    law.slug = entry.slug;
    law.stand = std::move(parsed->stand);
    law.builddate = std::move(parsed->builddate);
    law.source = entry.source;
    law.sections = std::move(parsed->sections);
    return law;
}

void LegalPair::put(LawEdition edition) {
    auto& law = edition.law;
    const auto row = std::ranges::find(manifest.laws, law.abbr.view(), &LegalManifestEntry::abbr);
    if (row != manifest.laws.end()) {
        row->builddate = law.builddate.view();
        row->stand = law.stand.view();
        row->lastModified = std::move(edition.lastModified);
        row->sectionCount = static_cast<std::int64_t>(law.sections.size());
    }
    const auto place = std::ranges::find(corpus.laws, law.abbr, &LegalLaw::abbr);
    if (place != corpus.laws.end()) {
        *place = std::move(law);
    } else {
        corpus.laws.push_back(std::move(law));
    }
}

} // namespace querlin
