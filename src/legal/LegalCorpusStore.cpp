#include "legal/LegalCorpusStore.h"

#include "foundation/IsoDate.h"
#include "foundation/Json.h"
#include "legal/CorpusContainer.h"
#include "legal/LegalUpdateError.h"
#include "state/DiagnosticsLog.h"
#include "state/JsonRecord.h"

namespace querlin {

namespace {

bool isThere(const std::filesystem::path& file) {
    std::error_code ignored; // What can't be looked at isn't there.
    return std::filesystem::exists(file, ignored);
}

std::optional<LegalManifest> manifestIn(const std::filesystem::path& file) {
    const auto text = Files::read(file);
    const auto json = text ? Json::parse(*text) : std::unexpected(JsonError());
    return json ? fromJson<LegalManifest>(*json) : std::nullopt;
}

} // namespace

bool LegalCorpusStore::hasUpdatedCorpus() const { return isThere(updatedCorpusURL()); }

FileResult<> LegalCorpusStore::prepareDirectory() const { return Files::makeFolder(directory_); }

void LegalCorpusStore::discardUpdated() const {
    Files::remove(updatedCorpusURL());
    Files::remove(updatedManifestURL());
    DiagnosticsLog::note("legal", "Nachgeladene Gesetzesfassung verworfen.");
}

std::optional<std::filesystem::path> LegalCorpusStore::corpusURL() const {
    for (auto file : {updatedCorpusURL(), resources_ / corpusName}) {
        if (isThere(file)) return file;
    }
    return std::nullopt;
}

std::optional<LegalManifest> LegalCorpusStore::currentManifest() const {
    auto stored = manifestIn(updatedManifestURL());
    return stored ? stored : bundledManifest();
}

std::optional<LegalManifest> LegalCorpusStore::bundledManifest() const {
    return manifestIn(resources_ / manifestName);
}

std::expected<void, std::string> LegalCorpusStore::write(LegalPair pair, Date now) const {
    using Kind = LegalUpdateError::Kind;
    const auto failed = [](Kind kind) { return std::unexpected(LegalUpdateError{kind, {}}.description()); };
    const auto discarded = [this](const FileError& error) {
        discardUpdated();
        return std::unexpected(error.description());
    };
    const auto container = CorpusContainer::deflate(pair.corpus.toJson());
    if (!container) return failed(Kind::compressionFailed);
    const auto fresh = Files::unfinishedName(updatedCorpusURL());
    if (const auto written = writeFresh(fresh, *container); !written) return discarded(written.error());
    if (loadCorpus(fresh) != pair.corpus) {
        Files::remove(fresh);
        return failed(Kind::notReadable);
    }
    if (const auto moved = Files::move(fresh, updatedCorpusURL()); !moved) {
        Files::remove(fresh);
        return discarded(moved.error());
    }
    constexpr std::size_t dayInCharacters = 10;
    pair.manifest.generated = isoDate(now).substr(0, dayInCharacters);
    if (const auto written =
            Files::writeAtomically(updatedManifestURL(), Json::pretty(toJson(pair.manifest)));
        !written)
        return discarded(written.error());
    return {};
}

FileResult<> LegalCorpusStore::writeFresh(const std::filesystem::path& file,
                                          const std::string& container) const {
    if (auto prepared = prepareDirectory(); !prepared) return prepared;
    Files::removeUnfinishedWrites(directory_);
    return Files::writeAtomically(file, container);
}

} // namespace querlin
