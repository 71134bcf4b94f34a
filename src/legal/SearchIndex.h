#pragma once

#include "legal/LegalLaw.h"
#include "legal/TextBlob.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

namespace querlin {

/// Finds sections by the words of their titles and texts. Letters are compared in small form, and byte for
/// byte otherwise: umlauts, "ß" and punctuation count.
///
/// Built once from laws that stay where they are and outlive it. Any thread.
class SearchIndex {
public:
    explicit SearchIndex(std::span<const LegalLaw> laws);
    SearchIndex(const SearchIndex&) = delete;
    SearchIndex& operator=(const SearchIndex&) = delete;

    struct Entry {
        const LegalLaw* law = nullptr;
        const LegalSection* section = nullptr;
    };
    enum class Part : std::uint8_t { titles, texts };

    /// Takes an entry; false ends the search.
    using Visitor = std::function<bool(const Entry&)>;

    /// Calls with every section that holds the term there, in the order of the laws, each once. `law` is one
    /// of those that the index was built from, or null for all.
    void matches(std::string_view term, Part part, const LegalLaw* law, const Visitor& visit) const;

private:
    std::span<const LegalLaw> laws_;
    std::vector<Entry> entries_;
    /// The number of each law's first entry, and the number of entries.
    std::vector<std::size_t> lawStarts_;
    TextBlob titles_;
    TextBlob texts_;
};

} // namespace querlin
