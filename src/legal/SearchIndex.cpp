#include "legal/SearchIndex.h"

#include "foundation/TextCase.h"

#include <algorithm>

namespace querlin {

namespace {

/// Titles take far less than this part of a corpus.
constexpr std::size_t bytesForAByteOfTitles = 16;

/// More than all laws have. Whatever a file claims, no more is made ready before it is there.
constexpr std::size_t mostBytesAtOnce = 32U << 20U;

} // namespace

SearchIndex::SearchIndex(std::size_t expectedBytes) :
    titles_(std::min(expectedBytes, mostBytesAtOnce) / bytesForAByteOfTitles),
    texts_(std::min(expectedBytes, mostBytesAtOnce)) {}

bool SearchIndex::addTexts(const Texts& texts) {
    const bool hasGoodTitle = titles_.append(texts.title);
    return texts_.append(texts.text) && hasGoodTitle;
}

void SearchIndex::addLaw(std::span<const LegalSection> sections) {
    const auto law = lawStarts_.size() - 1;
    for (const auto& section : sections) entries_.push_back({law, &section});
    lawStarts_.push_back(entries_.size());
}

void SearchIndex::matches(std::string_view term, Part part, Laws laws, const Visitor& visit) const {
    const TextBlob::Range range{lawStarts_[laws.first], lawStarts_[laws.end]};
    const auto& blob = part == Part::titles ? titles_ : texts_;
    blob.search(lowercase(term), range, [&](std::size_t number) { return visit(entries_[number]); });
}

} // namespace querlin
