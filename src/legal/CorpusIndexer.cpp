#include "legal/CorpusIndexer.h"

namespace querlin {

namespace {

/// So many that waking the thread costs little, and so few that it never lags far.
constexpr std::size_t sectionsInABatch = 64;

} // namespace

CorpusIndexer::~CorpusIndexer() { end(); }

void CorpusIndexer::willUnpack(std::size_t documentLengthInBytes) {
    documentLengthInBytes_ = documentLengthInBytes;
    thread_ = std::jthread([this] { work(); });
}

bool CorpusIndexer::didRead(const LegalSection& section) {
    next_.texts.push_back({section.title, section.text});
    if (next_.texts.size() == sectionsInABatch) handOver(std::exchange(next_, {}));
    return true; // It will be seen when they are made small.
}

void CorpusIndexer::didReadLaw(std::span<const LegalSection> sections) {
    next_.law = sections;
    handOver(std::exchange(next_, {}));
}

std::optional<CorpusIndex> CorpusIndexer::finish() {
    end();
    return isWellFormed_ ? std::optional(std::move(index_)) : std::nullopt;
}

void CorpusIndexer::handOver(Batch batch) {
    {
        const std::scoped_lock guard(mutex_);
        waiting_.push_back(std::move(batch));
    }
    wakeUp_.notify_one();
}

void CorpusIndexer::end() {
    {
        const std::scoped_lock guard(mutex_);
        isComplete_ = true;
    }
    wakeUp_.notify_one();
    if (thread_.joinable()) thread_.join();
}

void CorpusIndexer::work() {
    index_.words = SearchIndex(documentLengthInBytes_);
    while (true) {
        std::unique_lock guard(mutex_);
        wakeUp_.wait(guard, [this] { return isComplete_ || !waiting_.empty(); });
        if (waiting_.empty()) return;
        const auto batch = std::move(waiting_.front());
        waiting_.pop_front();
        guard.unlock();
        take(batch);
    }
}

void CorpusIndexer::take(const Batch& batch) {
    for (const auto& texts : batch.texts) isWellFormed_ &= index_.words.addTexts(texts);
    if (!batch.law) return;
    index_.words.addLaw(*batch.law);
    auto& byId = index_.numbers.emplace_back();
    byId.reserve(batch.law->size());
    for (const auto& section : *batch.law) byId.insert_or_assign(section.id, &section);
}

} // namespace querlin
