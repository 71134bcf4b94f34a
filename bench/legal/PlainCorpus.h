#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace querlin::bench {

/// The peer of loading and searching: the corpus as one would write it down at first, with the libraries that
/// are nearest at hand. zlib unpacks, nlohmann::json makes a tree, the records own their strings, ICU makes
/// the small letters.
struct PlainSection {
    std::string id;
    std::int64_t number = 0;
    std::string suffix;
    std::string label;
    std::string title;
    std::string path;
    std::string text;
    bool priority = false;
};

struct PlainLaw {
    std::string abbr;
    std::string name;
    std::int64_t tier = 0;
    std::string slug;
    std::string stand;
    std::string builddate;
    std::string source;
    std::vector<PlainSection> sections;
};

/// Many texts in small letters, one after the other.
struct PlainBlob {
    std::string bytes;
    /// Where each text begins, and the length of all.
    std::vector<std::size_t> starts{0};

    /// Calls with the number of each text that holds the term until it says false.
    template<class Visit>
    void search(std::string_view term, Visit visit) const;
};

struct PlainCorpus {
    std::vector<PlainLaw> laws;
    PlainBlob titles;
    PlainBlob texts;
    /// By law and id: "BGB-1814a".
    std::unordered_map<std::string, const PlainSection*> byId;

    static PlainCorpus load(const std::filesystem::path& file);
};

/// ICU's small letters.
std::string plainLowercase(std::string_view text);

/// With the C library's search, a binary search for the text, and a jump to the next text after a hit.
template<class Visit>
void PlainBlob::search(std::string_view term, Visit visit) const {
    const auto* end = bytes.data() + bytes.size();
    const auto* from = bytes.data();
    while (const auto* found = static_cast<const char*>(
               ::memmem(from, static_cast<std::size_t>(end - from), term.data(), term.size()))) {
        const auto offset = static_cast<std::size_t>(found - bytes.data());
        const auto next = std::upper_bound(starts.begin(), starts.end(), offset);
        if (!visit(static_cast<std::size_t>(next - starts.begin()) - 1)) return;
        from = bytes.data() + *next;
    }
}

} // namespace querlin::bench
