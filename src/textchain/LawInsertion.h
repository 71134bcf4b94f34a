#pragma once

#include "legal/LegalLookup.h"

#include <string>
#include <string_view>

namespace querlin::SpokenLawReference {

/// Puts the wording of a law in the place of the command to insert it: "füge Paragraph 1814 Absatz 2 BGB ein"
/// and "Paragraph 1814 BGB einfügen" -> "§ 1814 Abs. 2 BGB – Voraussetzungen\n(2) …". Of a section the text
/// goes down to the Absatz; without such an Absatz it is the whole section, which its heading says.
///
/// A number needs "Paragraph", "§" or a law beside it: "fünf einfügen" is no command. A command that can't be
/// served stays in words.
std::string applyInsertCommands(std::string_view text, LegalLookup& laws);

} // namespace querlin::SpokenLawReference
