#pragma once

#include "legal/LegalCorpusFile.h"
#include "legal/SearchIndex.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <span>
#include <string_view>
#include <thread>
#include <unordered_map>
#include <vector>

namespace querlin {

/// What answers about laws need besides the laws, law by law in their order.
struct CorpusIndex {
    /// The sections of a law by their id; of two with one id it is the later.
    using ById = std::unordered_map<std::string_view, const LegalSection*>;

    std::vector<ById> numbers;
    SearchIndex words;
};

/// Makes the index of a corpus while that is still being read: on a thread of its own, which ends with it.
///
/// What is read outlives this and the index.
class CorpusIndexer final : public CorpusReading {
public:
    CorpusIndexer() = default;
    ~CorpusIndexer() override;
    CorpusIndexer(const CorpusIndexer&) = delete;
    CorpusIndexer& operator=(const CorpusIndexer&) = delete;

    void willUnpack(std::size_t documentLengthInBytes) override;
    bool didRead(const LegalSection& section) override;
    void didReadLaw(std::span<const LegalSection> sections) override;

    /// Waits for the index of all that has been read; nothing if one of the texts is ill-formed.
    std::optional<CorpusIndex> finish();
    /// As `willUnpack` was given it.
    std::size_t documentLengthInBytes() const { return documentLengthInBytes_; }

private:
    /// What is handed over at once: the texts of some sections and, after the last one of a law, its
    /// sections.
    struct Batch {
        std::vector<SearchIndex::Texts> texts;
        std::optional<std::span<const LegalSection>> law;
    };

    void handOver(Batch batch);
    void work();
    void take(const Batch& batch);
    void end();

    std::size_t documentLengthInBytes_ = 0;
    Batch next_;
    std::mutex mutex_;
    std::condition_variable wakeUp_;
    std::deque<Batch> waiting_; // Under the lock, like the next.
    bool isComplete_ = false;
    CorpusIndex index_; // The thread's own until it has ended, like the next.
    bool isWellFormed_ = true;
    std::jthread thread_;
};

} // namespace querlin
