#pragma once

#include "legal/LegalLookup.h"

#include <string>
#include <string_view>

namespace querlin::SpokenLawReference {

/// Replaces the command to insert a law by the law's wording: "füge Paragraph 1814 Absatz 2 BGB ein"
/// and "Paragraph 1814 BGB einfügen" -> "§ 1814 Abs. 2 BGB – Voraussetzungen\n(2) …". The smallest
/// unit is the Absatz; if the section has no such Absatz, the whole section is inserted, and the heading says
/// so.
///
/// A number needs "Paragraph", "§" or a law beside it: "fünf einfügen" is no command. A command that can't be
/// carried out stays as it is.
std::string applyInsertCommands(std::string_view text, LegalLookup& laws);

} // namespace querlin::SpokenLawReference
