// Compiled with `querlin` defined as `querlin_icu`.

#include "Peer.h"

#include "IcuPattern.h"
#include "cleanup/TextPipeline.h"
#include "legal/LegalLookup.h"

namespace icu_peer {

std::string runPipeline(std::string_view transcript, bool appliesCommands, bool isCompact) {
    static querlin::PipelineRequest request = [] {
        querlin::PipelineRequest everyday;
        everyday.settings.textBlocks = querlin::TextBlock::builtIn();
        return everyday;
    }();
    static querlin::NoLaws none;
    request.settings.commandsEnabled = appliesCommands;
    request.style.compactText = isCompact;
    return querlin::TextPipeline::runWithoutModel(transcript, request, none).text;
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
