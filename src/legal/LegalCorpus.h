#pragma once

#include "foundation/Clock.h"
#include "foundation/Executor.h"
#include "legal/LegalCorpusStore.h"
#include "legal/LegalLookup.h"

#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace querlin {

/// All law texts, in memory. Loaded when first asked, or before that in the background; then an answer costs
/// a lock and a look. Any thread.
///
/// What is loaded is one snapshot that never changes and is replaced as a whole: an answer, once begun, is
/// given from one version of the laws. A corpus that can't be loaded has no laws, and every call tries
/// again; only the log tells why.
class LegalCorpus final : public LegalLookup {
public:
    static constexpr std::size_t defaultLimit = 80;

    LegalCorpus(const LegalCorpusStore& store, const Clock& clock);
    ~LegalCorpus() override;
    LegalCorpus(const LegalCorpus&) = delete;
    LegalCorpus& operator=(const LegalCorpus&) = delete;

    /// Begins to load and returns at once. This outlives what `background` runs.
    void preload(Executor& background);
    /// Loads here and now, unless that has been done. Whether the laws are there.
    bool loadIfNeeded();
    /// Forgets what is loaded and loads anew, as after an update. Loads that began before don't count.
    bool reload();
    /// Loads nothing.
    bool isLoaded() const;

    std::vector<LegalLaw> laws();
    struct Extent {
        std::size_t laws = 0;
        std::size_t sections = 0;
    };
    /// How much is loaded, at once and without loading. Nothing if nothing is.
    std::optional<Extent> extent() const;

    std::optional<LegalSection> section(std::string_view id, std::string_view law) override;
    std::optional<LegalHit> sectionInAnyLaw(std::string_view id) override;

    /// One line for each law: "BGB: 2541 §§, Stand 31.12.2023 – Zuletzt geändert durch …".
    std::vector<std::string> standSummary();

    /// What a user may have meant, the likeliest first: sections with exactly this number, then those whose
    /// number begins so, then those with the words in the title, then in the text; within each in the order
    /// of the laws. A law's abbreviation anywhere in the query restricts it to that law: "1814 BGB".
    std::vector<LegalHit> search(std::string_view query, std::size_t limit = defaultLimit);

private:
    class Snapshot;
    using SnapshotPointer = std::shared_ptr<const Snapshot>;

    /// What is loaded, after an attempt to load it; null if that fails.
    SnapshotPointer loaded();

    const LegalCorpusStore& store_;
    const Clock& clock_;
    mutable std::mutex lock_;
    SnapshotPointer snapshot_;     // Under the lock, like the next.
    std::uint64_t generation_ = 0; // Of the files, as far as we know.
};

} // namespace querlin
