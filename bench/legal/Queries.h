#pragma once

#include "Corpus.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace querlin::bench {

/// Terms in small letters that somebody may look for.
struct QueryMix {
    std::string name;
    std::vector<std::string> terms;
};

std::size_t lengthInScalars(std::string_view text);

/// Made of the corpus's own words, the same ones at each call: its most frequent words of three letters and
/// more; words drawn from all of its vocabulary; and what stands in the field while such words are typed,
/// from two letters to one before the last. So many terms each, as far as there are that many.
std::vector<QueryMix> queryMixes(const Corpus& corpus, std::size_t terms);

} // namespace querlin::bench
