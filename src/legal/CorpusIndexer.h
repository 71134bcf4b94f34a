#pragma once

#include "legal/SearchIndex.h"

#include <condition_variable>
#include <deque>
#include <mutex>
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
    SearchIndex words{0};
};

/// Makes the index of laws while they are still being read: on a thread of its own, which ends with it.
///
/// The sections must stay where they are, and be there for as long as this and the index are.
class CorpusIndexer {
public:
    /// Room for texts of so many bytes in all.
    explicit CorpusIndexer(std::size_t expectedBytes);
    ~CorpusIndexer();
    CorpusIndexer(const CorpusIndexer&) = delete;
    CorpusIndexer& operator=(const CorpusIndexer&) = delete;

    /// Hands over the sections of the next law.
    void add(std::span<const LegalSection> sections);
    /// Waits for the index of all of them.
    CorpusIndex finish();

private:
    void work(std::size_t expectedBytes);
    void end();

    std::mutex mutex_;
    std::condition_variable wakeUp_;
    std::deque<std::span<const LegalSection>> waiting_; // Under the lock, like the next.
    bool isComplete_ = false;
    CorpusIndex index_; // The thread's own until it has ended.
    std::jthread thread_;
};

} // namespace querlin
