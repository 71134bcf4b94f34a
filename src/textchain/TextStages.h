#pragma once

#include "foundation/Time.h"
#include "state/TextBlock.h"
#include "textchain/TextBlockExpander.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace querlin {

/// How spoken commands are written: as prose, or compact for a search field.
enum class CommandMode : std::uint8_t { prose, compact };

/// How sure one must be to take a whole text for a web address.
enum class AddressTest : std::uint8_t { strict, lenient };

/// The German text stages between the recogniser and the target, as the pipeline calls them. Each
/// passes through unchanged what it can't read. Main thread.
class TextStages {
public:
    struct CommandOutcome {
        std::string text;
        /// The speaker has taken the whole dictation back.
        bool discardedEverything = false;
        /// Names of the commands found, in order, for the log.
        std::vector<std::string> appliedCommands;
    };

    virtual ~TextStages() = default;

    /// Spoken punctuation, line breaks and corrections: "hallo Komma Welt" -> "hallo, Welt".
    virtual CommandOutcome applyCommands(std::string_view text, CommandMode mode) = 0;
    /// "Baustein Grußformel" -> the block's content, its placeholders filled in for `now`.
    virtual TextBlockExpander::Outcome expandBlocks(std::string_view text, std::span<const TextBlock> blocks,
                                                    Date now) = 0;
    /// Spoken insertion of law texts, then citations: "Paragraf 5 BGB" -> "§ 5 BGB".
    virtual std::string processLawReferences(std::string_view text) = 0;
    /// Dates and file numbers in one form: "3. März 2024" -> "03.03.2024".
    virtual std::string formatLegally(std::string_view text) = 0;
    /// Whether the whole text is one web address.
    virtual bool looksLikeAddress(std::string_view text, AddressTest test) = 0;
    /// Closes up a text that is one address: "www punkt beispiel punkt de" -> "www.beispiel.de".
    virtual std::string compactWholeText(std::string_view text) = 0;
    /// Closes up the addresses within a text.
    virtual std::string compactAddresses(std::string_view text) = 0;
};

} // namespace querlin
