#pragma once

#include "foundation/Task.h"
#include "foundation/Time.h"
#include "state/TextBlock.h"
#include "textchain/DictationCommands.h"
#include "textchain/TextBlockExpander.h"
#include "textchain/URLFormatting.h"

#include <span>
#include <string>
#include <string_view>

namespace querlin {

class LegalLookup;

/// The German text stages between the recogniser and the target, in the order in which the pipeline calls
/// them. Each leaves unchanged what it can't read. Main thread.
class TextStages {
public:
    virtual ~TextStages() = default;

    /// To be awaited before `processLawReferences`: the laws may still be loading.
    virtual Task<> ready() { co_return; }

    /// Spoken punctuation, line breaks and corrections: "hallo Komma Welt" -> "Hallo, Welt".
    virtual DictationCommands::Outcome applyCommands(std::string_view text, DictationCommands::Mode mode) = 0;
    /// "Baustein Grußformel" -> the block's content, its placeholders filled in for `now`.
    virtual TextBlockExpander::Outcome expandBlocks(std::string_view text, std::span<const TextBlock> blocks,
                                                    Date now) = 0;
    /// The wording of laws where the speaker asks for it, then citations: "Paragraf 5 BGB" -> "§ 5 BGB",
    /// within inserted wording too.
    virtual std::string processLawReferences(std::string_view text) = 0;
    /// Dates and file numbers in one form: "3. März 2024" -> "03.03.2024".
    virtual std::string formatLegally(std::string_view text) = 0;
    /// Closes up a text that is one web address, or else the addresses within it:
    /// "Www. Beispiel. De" -> "www.beispiel.de".
    virtual std::string compactAddresses(std::string_view text, URLFormatting::AddressTest test) = 0;
};

/// The real stages. The laws must outlive them.
class TextChain final : public TextStages {
public:
    explicit TextChain(LegalLookup& laws) : laws_(laws) {}

    Task<> ready() override;

    DictationCommands::Outcome applyCommands(std::string_view text, DictationCommands::Mode mode) override;
    TextBlockExpander::Outcome expandBlocks(std::string_view text, std::span<const TextBlock> blocks,
                                            Date now) override;
    std::string processLawReferences(std::string_view text) override;
    std::string formatLegally(std::string_view text) override;
    std::string compactAddresses(std::string_view text, URLFormatting::AddressTest test) override;

private:
    LegalLookup& laws_;
};

} // namespace querlin
