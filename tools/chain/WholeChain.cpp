#include "chain/WholeChain.h"

#include "cleanup/RuleBasedEnhancer.h"
#include "legal/LegalLookup.h"
#include "textchain/TextStages.h"
#include "textchain/Transcript.h"

namespace querlin {

ChainOutcome runWholeChain(std::string_view transcript, const ChainOptions& options) {
    NoLaws none;
    TextChain stages(options.laws ? *options.laws : none);
    auto text = normalizedTranscript(transcript);
    if (options.appliesCommands) {
        using DictationCommands::Mode;
        auto outcome = stages.applyCommands(text, options.isCompact ? Mode::compact : Mode::prose);
        if (outcome.discardedEverything) return {"", true};
        text = std::move(outcome.text);
    }
    if (options.mode != CleanupMode::none && !options.isCompact) {
        text = RuleBasedEnhancer::clean(text,
                                        {.commandsApplied = options.appliesCommands, .rulesApplied = false});
    }
    auto expanded = stages.expandBlocks(text, options.blocks, options.now);
    if (!expanded.usedBlocks.empty()) text = std::move(expanded.text);
    text = stages.processLawReferences(text);
    if (options.style == WritingStyle::aktenstil) text = stages.formatLegally(text);
    using URLFormatting::AddressTest;
    return {stages.compactAddresses(text, options.isCompact ? AddressTest::lenient : AddressTest::strict),
            false};
}

} // namespace querlin
