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
/// The sections stay where they are and outlive it. Once all laws are there, any thread may search.
class SearchIndex {
public:
    /// Room for texts of so many bytes in all.
    explicit SearchIndex(std::size_t expectedBytes = 0);

    /// What is searched of a section.
    struct Texts {
        std::string_view title;
        std::string_view text;
    };
    /// Adds the texts of the next section; they need not stay. False if they are not well-formed UTF-8.
    bool addTexts(const Texts& texts);
    /// Says whose texts have been added since the last law: those of these sections, one by one.
    void addLaw(std::span<const LegalSection> sections);

    struct Entry {
        /// The law's number, in the order in which they came.
        std::size_t law = 0;
        const LegalSection* section = nullptr;
    };
    enum class Part : std::uint8_t { titles, texts };

    /// Takes an entry; false ends the search.
    using Visitor = std::function<bool(const Entry&)>;

    /// The numbers of laws, from the first to one past the last.
    struct Laws {
        std::size_t first = 0;
        std::size_t end = 0;
    };
    Laws allLaws() const { return {0, lawStarts_.size() - 1}; }

    /// Calls with every section of these laws that holds the term there, in their order, each once.
    void matches(std::string_view term, Part part, Laws laws, const Visitor& visit) const;

private:
    std::vector<Entry> entries_;
    /// The number of each law's first entry, and the number of entries.
    std::vector<std::size_t> lawStarts_{0};
    TextBlob titles_;
    TextBlob texts_;
};

} // namespace querlin
