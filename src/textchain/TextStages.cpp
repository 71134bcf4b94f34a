#include "textchain/TextStages.h"

#include "legal/LegalLookup.h"
#include "textchain/LawInsertion.h"
#include "textchain/LegalFormatting.h"
#include "textchain/SpokenLawReference.h"

namespace querlin {

Task<> TextChain::ready() { return laws_.ready(); }

DictationCommands::Outcome TextChain::applyCommands(std::string_view text, DictationCommands::Mode mode) {
    return DictationCommands::apply(text, mode);
}

TextBlockExpander::Outcome TextChain::expandBlocks(std::string_view text, std::span<const TextBlock> blocks,
                                                   Date now) {
    return TextBlockExpander::expand(text, blocks, now);
}

std::string TextChain::processLawReferences(std::string_view text) {
    return SpokenLawReference::normalizeReferences(SpokenLawReference::applyInsertCommands(text, laws_));
}

std::string TextChain::formatLegally(std::string_view text) { return LegalFormatting::apply(text); }

std::string TextChain::compactAddresses(std::string_view text, URLFormatting::AddressTest test) {
    return URLFormatting::looksLikeAddress(text, test) ? URLFormatting::compactWholeText(text)
                                                       : URLFormatting::compactURLs(text);
}

} // namespace querlin
