#pragma once

#include <string_view>

namespace querlin {

/// The order of a German list for people, case ignored: "Ähre" sorts after "Ahorn" and before "Axt",
/// "apfel" and "Apfel" are equal. Negative, zero or positive, as `a` sorts before, with or after `b`.
/// (DIN 5007-1, through CLDR's collation for German, whatever the user's locale.) Any thread.
int compareIgnoringCaseLocalized(std::string_view a, std::string_view b);

} // namespace querlin
