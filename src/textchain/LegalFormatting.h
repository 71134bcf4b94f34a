#pragma once

#include <string>
#include <string_view>

/// Brings dates and file numbers into one written form: "3. März 2024" -> "03.03.2024", "Az. XVII 123 24"
/// -> "Az. XVII 123/24". Number words are not read; anything else is returned unchanged.
namespace querlin::LegalFormatting {

std::string apply(std::string_view text);

/// Written-out months first, then numeric dates. Every month may have 31 days.
std::string normalizeDates(std::string_view text);
/// Only after "Aktenzeichen", "Az" and "Gesch.-Nr".
std::string normalizeCaseNumbers(std::string_view text);

} // namespace querlin::LegalFormatting
