#pragma once

#include "legal/LegalLaw.h"
#include "legal/LegalManifest.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace querlin::bench {

/// A law as the portal delivers it.
struct Archive {
    LegalManifestEntry entry;
    std::string bytes;
};

/// The laws that all cases of one table work with, in each of their forms.
struct Corpus {
    /// Where it comes from, in words.
    std::string origin;
    std::vector<Archive> archives;
    std::vector<LegalLaw> laws;
    std::string document;
    std::string container;

    std::size_t sectionCount() const;
    std::size_t textBytes() const;
    /// Its sizes in one line.
    std::string description() const;
};

/// The real laws that lie beside the project as "<slug>/xml.zip"; nothing if there are none.
std::optional<Corpus> realCorpus(const std::filesystem::path& folder);
Corpus syntheticCorpus(std::size_t sections);

} // namespace querlin::bench
