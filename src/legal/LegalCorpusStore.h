#pragma once

#include "foundation/Files.h"
#include "legal/LawEdition.h"
#include "legal/LegalManifest.h"

#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace querlin {

/// Where the law texts lie: one pair of corpus and manifest was delivered with the program and is only read;
/// a second, which updates write, takes its place once it is there. Any thread.
class LegalCorpusStore {
public:
    static constexpr std::string_view corpusName = "LegalCorpus.deflate";
    static constexpr std::string_view manifestName = "LegalManifest.json";

    /// The user's folder for laws, which need not exist, and the program's resources.
    LegalCorpusStore(std::filesystem::path directory, std::filesystem::path resources) :
        directory_(std::move(directory)), resources_(std::move(resources)) {}

    const std::filesystem::path& directory() const { return directory_; }
    std::filesystem::path updatedCorpusURL() const { return directory_ / corpusName; }
    std::filesystem::path updatedManifestURL() const { return directory_ / manifestName; }

    /// Whether there is a stored corpus; a damaged one is there too.
    bool hasUpdatedCorpus() const;
    FileResult<> prepareDirectory() const;
    /// Deletes the stored pair, so that the delivered one counts again.
    void discardUpdated() const;

    /// The file to load: the stored corpus, else the delivered one.
    std::optional<std::filesystem::path> corpusURL() const;
    /// The stored manifest, or where that can't be read the delivered one.
    std::optional<LegalManifest> currentManifest() const;
    std::optional<LegalManifest> bundledManifest() const;

    /// Stores a pair; the manifest gets the day as its own. At any moment of it, be it the last of the
    /// process, each of the two files is whole, the old one or the new, and the manifest is never newer than
    /// the corpus: what it doesn't know of yet is fetched once more. The new corpus is read back before it
    /// replaces the last one, which stays if that fails; on any other failure the stored pair is discarded.
    /// The error is a German sentence.
    std::expected<void, std::string> write(LegalPair pair, Date now) const;

private:
    FileResult<> writeFresh(const std::filesystem::path& file, const std::string& container) const;

    std::filesystem::path directory_;
    std::filesystem::path resources_;
};

} // namespace querlin
