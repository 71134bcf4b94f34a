#pragma once

#include "foundation/Time.h"
#include "state/TextBlock.h"
#include "state/WritingStyle.h"

#include <string>
#include <string_view>
#include <vector>

namespace querlin {

class LegalLookup;

/// What decides which stages run; the same as in the program's pipeline.
struct ChainOptions {
    WritingStyle style = WritingStyle::aktenstil;
    CleanupMode mode = CleanupMode::rules;
    /// As in a search field.
    bool isCompact = false;
    bool appliesCommands = true;
    std::vector<TextBlock> blocks = TextBlock::builtIn();
    Date now;
    /// Where law texts come from that the speaker asks for; null for nowhere.
    LegalLookup* laws = nullptr;
};

struct ChainOutcome {
    std::string text;
    /// The speaker has taken everything back.
    bool discardedEverything = false;
};

/// Takes a transcript through all stages in the pipeline's order, without the language model and without
/// waiting for anything.
ChainOutcome runWholeChain(std::string_view transcript, const ChainOptions& options);

} // namespace querlin
