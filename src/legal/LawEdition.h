#pragma once

#include "legal/LegalCorpusFile.h"
#include "legal/LegalManifest.h"

#include <expected>
#include <string>
#include <string_view>

namespace querlin {

/// A law as the portal has it now.
struct LawEdition {
    LegalLaw law;
    /// What the portal says of its age, as it says it.
    std::string lastModified;
};

/// Makes a law out of its archive and what the manifest knows of it. The error is a German sentence. Any
/// thread.
std::expected<LegalLaw, std::string> lawFromArchive(const LegalManifestEntry& entry,
                                                    std::string_view archive);

/// The two files that belong together.
struct LegalPair {
    LegalCorpusFile corpus;
    LegalManifest manifest;

    /// Puts the edition in the place of the law with its abbreviation, or after all others, and writes in
    /// its row of the manifest which one it is.
    void put(LawEdition edition);
};

} // namespace querlin
