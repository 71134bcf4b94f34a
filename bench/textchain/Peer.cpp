// Compiled with `querlin` defined as `querlin_icu`.

#include "Peer.h"

#include "IcuPattern.h"
#include "chain/WholeChain.h"

namespace icu_peer {

std::string runWholeChain(std::string_view transcript, bool appliesCommands, bool isCompact) {
    static querlin::ChainOptions options;
    options.appliesCommands = appliesCommands;
    options.isCompact = isCompact;
    return querlin::runWholeChain(transcript, options).text;
}

void keepMatchers(bool keeps) { querlin::keepMatchers(keeps); }

std::vector<std::pair<std::string, bool>> compiledExpressions() {
    std::vector<std::pair<std::string, bool>> result;
    for (const auto& [expression, ignoresCase] : querlin::compiledExpressions()) {
        result.emplace_back(expression, ignoresCase);
    }
    return result;
}

} // namespace icu_peer
