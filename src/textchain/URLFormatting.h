#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Closes up web addresses that a recogniser has split: "Www. Beispiel. De" ->
/// "www.beispiel.de".
namespace querlin::URLFormatting {

/// What a whole text must look like to count as an address: it begins with "www." or "http://", or, where
/// only a name or an address is expected, is a bare domain.
enum class AddressTest : std::uint8_t { strict, lenient };

/// Blanks and case are ignored; a text of more than 120 characters is never an address as a whole.
bool looksLikeAddress(std::string_view text, AddressTest test);

/// Closes up a text that is one address: no blanks, no full stop at the end, lower case.
std::string compactWholeText(std::string_view text);
/// Closes up the addresses within a text; a sentence's own full stop stays.
std::string compactURLs(std::string_view text);

} // namespace querlin::URLFormatting
