#pragma once

#include "foundation/Time.h"

#include <optional>
#include <string>
#include <string_view>

namespace querlin {

/// A date as the persisted files write it: ISO 8601 in UTC, "2026-03-01T09:30:00Z". A fraction of a
/// second is written with as many digits as it needs, and left out if there is none.
std::string isoDate(Date date);

/// Reads what `isoDate` writes, nothing looser: other separators, zones other than "Z" and days that
/// the calendar doesn't have give nothing.
std::optional<Date> parseIsoDate(std::string_view text);

} // namespace querlin
