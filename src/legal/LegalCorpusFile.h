#pragma once

#include "foundation/BigText.h"
#include "legal/LegalLaw.h"

#include <cstddef>
#include <expected>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace querlin {

/// Follows the reading of a corpus, to do something with it meanwhile. Called on the thread that reads.
class CorpusReading {
public:
    virtual ~CorpusReading() = default;
    /// The length of the document, before it is unpacked.
    virtual void willUnpack(std::size_t /*documentLengthInBytes*/) {}
    /// A section is whole; it may still move, but its texts stay where they are. Its title and text have not
    /// been looked at yet: false means that one of them is ill-formed, and ends the reading.
    virtual bool didRead(const LegalSection& section);
    /// All sections of a law are there. They move no more, nor when the content that they are in is moved.
    virtual void didReadLaw(std::span<const LegalSection> /*sections*/) {}
};

/// The whole document of the corpus.
struct LegalCorpusFile {
    /// When it was first made.
    SharedText generated;
    /// In the order of every list and every search.
    std::vector<LegalLaw> laws;

    bool operator==(const LegalCorpusFile&) const = default;

    /// Reads the JSON form (RFC 8259). Every key must be there with its type, keys that aren't known are
    /// passed over, and of two of one name the last counts, unless they are lists. The texts are views into
    /// the document, which they keep. The error is a German sentence; after one `content` holds what was
    /// read.
    static std::expected<void, std::string> readJson(BigText document, LegalCorpusFile& content,
                                                     CorpusReading& reading);
    static std::expected<LegalCorpusFile, std::string> fromJson(BigText document);
    static std::expected<LegalCorpusFile, std::string> fromJson(std::string_view document) {
        return fromJson(BigText(document));
    }
    std::string toJson() const;
};

/// Reads a whole corpus from disk. The error is a German sentence, as the log has it; after one `content`
/// holds what was read.
std::expected<void, std::string> loadCorpus(const std::filesystem::path& file, LegalCorpusFile& content,
                                            CorpusReading& reading);
std::expected<LegalCorpusFile, std::string> loadCorpus(const std::filesystem::path& file);

} // namespace querlin
