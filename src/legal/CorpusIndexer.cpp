#include "legal/CorpusIndexer.h"

namespace querlin {

CorpusIndexer::CorpusIndexer(std::size_t expectedBytes) :
    thread_([this, expectedBytes] { work(expectedBytes); }) {}

CorpusIndexer::~CorpusIndexer() { end(); }

void CorpusIndexer::add(std::span<const LegalSection> sections) {
    {
        const std::scoped_lock guard(mutex_);
        waiting_.push_back(sections);
    }
    wakeUp_.notify_one();
}

CorpusIndex CorpusIndexer::finish() {
    end();
    return std::move(index_);
}

void CorpusIndexer::end() {
    {
        const std::scoped_lock guard(mutex_);
        isComplete_ = true;
    }
    wakeUp_.notify_one();
    if (thread_.joinable()) thread_.join();
}

void CorpusIndexer::work(std::size_t expectedBytes) {
    index_.words = SearchIndex(expectedBytes);
    while (true) {
        std::unique_lock guard(mutex_);
        wakeUp_.wait(guard, [this] { return isComplete_ || !waiting_.empty(); });
        if (waiting_.empty()) return;
        const auto sections = waiting_.front();
        waiting_.pop_front();
        guard.unlock();

        index_.words.add(sections);
        auto& byId = index_.numbers.emplace_back();
        byId.reserve(sections.size());
        for (const auto& section : sections) byId.insert_or_assign(section.id, &section);
    }
}

} // namespace querlin
