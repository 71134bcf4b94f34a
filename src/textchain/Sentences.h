#pragma once

#include <string>
#include <string_view>

namespace querlin {

/// Whether a character ends a sentence: ".", "!", "?" or a line break. The point of an abbreviation counts
/// too.
bool endsSentence(std::string_view character);

/// Capitalises the first letter of each sentence: "ja. „gut“, 1. mai" -> "Ja. „Gut“, 1. Mai".
std::string capitalizeSentences(std::string_view text);

} // namespace querlin
