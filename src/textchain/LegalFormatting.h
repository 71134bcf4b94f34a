#pragma once

#include <string>
#include <string_view>

/// Brings dates and file numbers into one written form: "3. März 2024" -> "03.03.2024", "Az. XVII 123 24"
/// -> "Az. XVII 123/24". Number words are not read; anything else comes back unchanged.
namespace querlin::LegalFormatting {

std::string apply(std::string_view text);

/// Written-out months first, then numbers. Days run from 1 to 31 in every month.
std::string normalizeDates(std::string_view text);
/// Behind "Aktenzeichen", "Az" and "Gesch.-Nr" alone.
std::string normalizeCaseNumbers(std::string_view text);

} // namespace querlin::LegalFormatting
