#pragma once

#include <string>
#include <string_view>

namespace querlin {

/// Whether a character ends a sentence: ".", "!", "?" or a line break. An abbreviation's point does too.
bool endsSentence(std::string_view character);

/// Writes the first letter of each sentence large: "ja. „gut“, 1. mai" -> "Ja. „Gut“, 1. Mai".
std::string capitalizeSentences(std::string_view text);

} // namespace querlin
