#pragma once

#include "foundation/Runtime.h"
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

/// All law texts, in memory. An answer costs a lock and a look and never waits for a load: before the first
/// one has ended there are no laws. Any thread, unless stated.
///
/// What is loaded is one snapshot that never changes. A further load replaces it as a whole when the new one
/// is complete, so that there is no moment without laws, and an answer is given from one version of them. One
/// load runs at a time. A load that fails leaves what was there; the log says why.
class LegalCorpus final : public LegalLookup {
public:
    static constexpr std::size_t defaultLimit = 80;
    /// A dictation that wants a law waits this long for a disk that doesn't answer.
    static constexpr Duration longestWait = std::chrono::seconds(5);

    /// `runtime.background` is where loads and searches belong; a dictation must not need it for anything
    /// else. This outlives what runs there.
    LegalCorpus(const LegalCorpusStore& store, Runtime runtime);
    ~LegalCorpus() override;
    LegalCorpus(const LegalCorpus&) = delete;
    LegalCorpus& operator=(const LegalCorpus&) = delete;

    /// Begins to load in the background, unless that has been done.
    void preload();
    /// Loads in the background, unless that has been done, and ends when the attempt has; it waits at most
    /// `longestWait`. Main thread.
    Task<> ready() override;
    /// Loads on the calling thread, unless that has been done; waits for a load that is under way. Whether
    /// the laws are there.
    bool loadIfNeeded();
    /// Loads on the calling thread, as after an update. False if that failed and nothing has changed.
    bool reload();
    bool isLoaded() const;

    /// Where searches belong, and all that takes time with the laws.
    Runtime runtime() const { return runtime_; }

    struct Extent {
        std::size_t laws = 0;
        std::size_t sections = 0;
    };
    /// How much is loaded; nothing if nothing is.
    std::optional<Extent> extent() const;
    /// A copy of all.
    std::vector<LegalLaw> laws() const;

    std::optional<LegalSection> section(std::string_view id, std::string_view law) override;
    std::optional<LegalHit> sectionInAnyLaw(std::string_view id) override;

    /// One line for each law: "BGB: 2541 §§, Stand 31.12.2023 – Zuletzt geändert durch …".
    std::vector<std::string> standSummary() const;

    /// What a user may have meant, the likeliest first: sections with exactly this number, then those whose
    /// number begins so, then those with the words in the title, then in the text; within each in the order
    /// of the laws. A law's abbreviation anywhere in the query restricts it to that law: "1814 BGB".
    std::vector<LegalHit> search(std::string_view query, std::size_t limit = defaultLimit) const;

private:
    class Snapshot;
    using SnapshotPointer = std::shared_ptr<const Snapshot>;

    /// What is loaded; null if nothing is.
    SnapshotPointer loaded() const;
    /// Under `loading_`.
    bool load();
    SnapshotPointer read() const;

    const LegalCorpusStore& store_;
    Runtime runtime_;
    std::mutex loading_; ///< held for the length of a load
    mutable std::mutex lock_;
    SnapshotPointer snapshot_; ///< under `lock_`
};

} // namespace querlin
