#pragma once

#include "foundation/BigText.h"
#include "legal/LegalLaw.h"

#include <cstddef>
#include <expected>
#include <filesystem>
#include <functional>
#include <span>
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

    using OnLaw = std::function<void(std::span<const LegalSection>)>;

    /// Reads the JSON form (RFC 8259). Every key must be there with its type, keys that aren't known are
    /// passed over, and of two of one name the last counts, unless they are lists. The texts are views into
    /// the document, which they keep. The error is a German sentence.
    ///
    /// `onLaw` is called with the sections of each law as soon as all of them are read. From then on they
    /// stay where they are, also when `content` is moved; after an error too `content` holds them.
    static std::expected<void, std::string> readJson(BigText document, LegalCorpusFile& content,
                                                     const OnLaw& onLaw);
    static std::expected<LegalCorpusFile, std::string> fromJson(BigText document);
    static std::expected<LegalCorpusFile, std::string> fromJson(std::string_view document) {
        return fromJson(BigText(document));
    }
    std::string toJson() const;
};

/// Reads a whole corpus from disk. `onLength` is told the length of its document before that is unpacked, and
/// `onLaw` as above. The error is a German sentence, as the log has it; after one too `content` holds what
/// was read.
std::expected<void, std::string> loadCorpus(const std::filesystem::path& file, LegalCorpusFile& content,
                                            const std::function<void(std::size_t)>& onLength,
                                            const LegalCorpusFile::OnLaw& onLaw);
std::expected<LegalCorpusFile, std::string> loadCorpus(const std::filesystem::path& file);

} // namespace querlin
