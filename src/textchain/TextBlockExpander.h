#pragma once

#include "foundation/Time.h"
#include "state/TextBlock.h"

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Puts the user's text blocks in place of their spoken names: "Baustein Grußformel" -> the content.
namespace querlin::TextBlockExpander {

struct Outcome {
    std::string text;
    /// Names of the blocks put in, in order, for the log.
    std::vector<std::string> usedBlocks;
};

/// What a content may hold, in whatever case.
inline constexpr std::array<std::string_view, 4> placeholders = {"{Datum}", "{Uhrzeit}", "{Wochentag}",
                                                                 "{Jahr}"};

/// Replaces "Baustein", "Textbaustein" or "Vorlage" with the name of a block behind it; of several names
/// that fit, one of more words goes first. Punctuation at the spoken words and their case don't count.
/// Without any blocks the text comes back unchanged; otherwise white space behind the last word goes.
Outcome expand(std::string_view text, std::span<const TextBlock> blocks, Date now);

/// Fills in date, time, weekday and year of a moment, in the local time zone: "{Datum}" -> "14.03.2026".
/// Anything else in curly brackets stays.
std::string fillPlaceholders(std::string_view content, Date now);

} // namespace querlin::TextBlockExpander
