#pragma once

#include "foundation/Time.h"

#include <optional>
#include <string>
#include <string_view>

namespace querlin {

/// A date as the persisted files write it: ISO 8601 in UTC, "2026-03-01T09:30:00Z". A fraction of a
/// second has as many digits as it needs, and is left out if it is zero.
std::string isoDate(Date date);

/// Parses what `isoDate` writes, and nothing looser: unset for other separators, zones other than "Z" and
/// impossible dates.
std::optional<Date> parseIsoDate(std::string_view text);

} // namespace querlin
