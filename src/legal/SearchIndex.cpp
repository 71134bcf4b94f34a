#include "legal/SearchIndex.h"

#include "foundation/TextCase.h"

namespace querlin {

namespace {

/// Titles take far less than this part of a corpus.
constexpr std::size_t bytesForAByteOfTitles = 16;

} // namespace

SearchIndex::SearchIndex(std::size_t expectedBytes) :
    titles_(expectedBytes / bytesForAByteOfTitles), texts_(expectedBytes) {}

bool SearchIndex::addTexts(const Texts& texts) {
    const bool hasGoodTitle = titles_.append(texts.title);
    return texts_.append(texts.text) && hasGoodTitle;
}

void SearchIndex::addLaw(std::span<const LegalSection> sections) {
    const auto law = lawStarts_.size() - 1;
    for (const auto& section : sections) entries_.push_back({law, &section});
    lawStarts_.push_back(entries_.size());
}

void SearchIndex::matches(std::string_view term, Part part, std::optional<std::size_t> onlyLaw,
                          const Visitor& visit) const {
    const TextBlob::Range range = onlyLaw ? TextBlob::Range{lawStarts_[*onlyLaw], lawStarts_[*onlyLaw + 1]}
                                          : TextBlob::Range{0, entries_.size()};
    const auto& blob = part == Part::titles ? titles_ : texts_;
    blob.search(lowercase(term), range, [&](std::size_t number) { return visit(entries_[number]); });
}

} // namespace querlin
