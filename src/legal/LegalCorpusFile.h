#pragma once

#include "foundation/BigText.h"
#include "legal/LegalLaw.h"

#include <cstddef>
#include <expected>
#include <filesystem>
#include <string>
#include <vector>

namespace querlin {

/// The whole document of the corpus.
struct LegalCorpusFile {
    /// When it was first made.
    SharedText generated;
    /// In the order of every list and every search.
    std::vector<LegalLaw> laws;

    bool operator==(const LegalCorpusFile&) const = default;

    /// Reads the JSON form (RFC 8259). Every key must be there with its type, keys that aren't known are
    /// passed over, and of two of one name the last counts. The texts of the result are views into the
    /// document, which they keep. The error is a German sentence.
    static std::expected<LegalCorpusFile, std::string> fromJson(BigText document);
    static std::expected<LegalCorpusFile, std::string> fromJson(std::string_view document) {
        return fromJson(BigText(document));
    }
    std::string toJson() const;
};

/// A corpus as it comes from its file.
struct LoadedCorpus {
    LegalCorpusFile content;
    std::size_t documentLengthInBytes = 0;
};

/// Reads a container from disk. The error is a German sentence, as the log has it.
std::expected<LoadedCorpus, std::string> loadCorpus(const std::filesystem::path& file);

} // namespace querlin
