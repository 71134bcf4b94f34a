#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace querlin::bench {

/// A law in the portal's XML, with invented words.
struct SyntheticLaw {
    std::string abbr;
    std::string document;
};

/// Twenty-six laws of so many sections together, the same ones at each call. Their words are made of
/// syllables, but for the small ones that no German sentence does without, and are as unevenly frequent as
/// in real texts; part of them come in fixed phrases, so that the texts can be packed as well as real ones.
std::vector<SyntheticLaw> syntheticLaws(std::size_t sections);

} // namespace querlin::bench
