#pragma once

#include "foundation/Time.h"
#include "state/TextBlock.h"

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Replaces the spoken names of the user's text blocks by their content: "Baustein Grußformel" -> the
/// content.
namespace querlin::TextBlockExpander {

struct Outcome {
    std::string text;
    /// Names of the inserted blocks, in order, for the log.
    std::vector<std::string> usedBlocks;
};

/// The placeholders of a content, in any case.
inline constexpr std::array<std::string_view, 4> placeholders = {"{Datum}", "{Uhrzeit}", "{Wochentag}",
                                                                 "{Jahr}"};

/// Replaces "Baustein", "Textbaustein" or "Vorlage" followed by the name of a block; of several
/// matching names the one with more words wins. Case and punctuation of the spoken words are ignored. Without
/// any blocks the text is returned unchanged; otherwise white space after the last word is removed.
Outcome expand(std::string_view text, std::span<const TextBlock> blocks, Date now);

/// Fills in date, time, weekday and year, in the local time zone: "{Datum}" -> "14.03.2026".
/// Anything else in curly brackets stays.
std::string fillPlaceholders(std::string_view content, Date now);

} // namespace querlin::TextBlockExpander
