#pragma once

#include "Corpus.h"
#include "report/Report.h"

namespace querlin::bench {

/// What all cases share.
struct Setting {
    const Corpus& corpus;
    Report& report;
    /// Everything only once, to check that ours and the peers agree.
    bool isQuick = false;

    std::size_t repetitions(std::size_t thorough) const { return isQuick ? 1 : thorough; }
};

/// Cold and warm loading, and its memory.
void runLoadCases(const Setting& setting);
/// Searches compared with memmem, an index and just reading the bytes, and how often they allocate.
void runSearchCases(const Setting& setting);
/// The portal's archives and their XML.
void runArchiveCases(const Setting& setting);

} // namespace querlin::bench
