#pragma once

#include <string>
#include <string_view>

namespace querlin {

/// Full Unicode case mappings, independent of the locale: "Straße" -> "STRASSE".
std::string uppercase(std::string_view text);
std::string lowercase(std::string_view text);

/// Normalisation form C (UAX #15): one form for texts that mean the same, "o\u0308" -> "ö". Ill-formed
/// bytes become U+FFFD.
std::string nfc(std::string_view text);
bool isNfc(std::string_view text);

/// Equal under canonical equivalence.
bool canonicallyEqual(std::string_view a, std::string_view b);

/// Comparisons under full case folding and canonical equivalence: "ÄPFEL" equals "äpfel" in whatever
/// form, and "STRASSE" equals "Straße". The empty needle is contained in everything.
bool equalIgnoringCase(std::string_view a, std::string_view b);
bool containsIgnoringCase(std::string_view haystack, std::string_view needle);

} // namespace querlin
