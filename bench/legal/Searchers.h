#pragma once

#include "Corpus.h"
#include "PlainCorpus.h"

#include "foundation/Processor.h"
#include "legal/SearchIndex.h"
#include "legal/TextBlob.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace querlin::bench {

/// Ours and the peers side by side, over the same laws. What a search gives lasts until the next.
class Searchers {
public:
    /// The numbers of sections, in the order of all laws.
    using Found = std::vector<std::size_t>;

    Searchers(const Corpus& corpus, PlainCorpus plain);

    /// All sections with the term in their texts, collected by SearchIndex.
    const std::vector<const LegalSection*>& ours(std::string_view term);
    /// The same by memmem.
    const Found& plainly(std::string_view term);
    /// The same by TextBlob alone.
    const Found& scanned(std::string_view term, Registers registers);
    /// What a whole search shows, by memmem: titles, then texts, until so many sections are there.
    const Found& shownPlainly(std::string_view term, std::size_t limit);

    /// Whether all of them find the same.
    bool agreeOn(std::string_view term);

    const LegalSection& section(std::size_t number) const { return *sections_[number]; }
    const PlainCorpus& plain() const { return plain_; }
    const SearchIndex& index() const { return index_; }

private:
    SearchIndex index_;
    TextBlob texts_;
    PlainCorpus plain_;
    std::vector<const LegalSection*> sections_;
    std::vector<const LegalSection*> found_;
    Found numbers_;
};

} // namespace querlin::bench
