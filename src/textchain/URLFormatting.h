#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Puts web addresses together that a recogniser has taken to pieces: "Www. Beispiel. De" ->
/// "www.beispiel.de".
namespace querlin::URLFormatting {

/// What a whole text must look like to be taken for an address: one that begins with "www." or "http://",
/// or, where nothing but a name or an address is expected, a bare domain too.
enum class AddressTest : std::uint8_t { strict, lenient };

/// Blanks and case don't count; of 121 and more characters nothing is an address as a whole.
bool looksLikeAddress(std::string_view text, AddressTest test);

/// Closes a text up that is one address: no blanks, no full stop at the end, small letters.
std::string compactWholeText(std::string_view text);
/// Closes up the addresses within a text; a sentence's own full stop stays.
std::string compactURLs(std::string_view text);

} // namespace querlin::URLFormatting
