#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace querlin {

/// Full Unicode case mappings, independent of the locale: "Straße" -> "STRASSE", "ΟΔΟΣ" -> "οδος" with
/// the final sigma. Ill-formed bytes become U+FFFD.
std::string uppercase(std::string_view text);
std::string lowercase(std::string_view text);

/// Lower case for A to Z and U+00C0 to U+00DE only, byte for byte; everything else is copied. Writes as many
/// bytes as the text has.
void lowercaseLatin1(std::string_view text, char* lower);

/// Normalisation form C (UAX #15): "o\u0308" -> "ö". Ill-formed
/// bytes become U+FFFD.
std::string nfc(std::string_view text);
/// Whether `nfc` would return the text unchanged; false for ill-formed bytes.
bool isNfc(std::string_view text);

/// Equal under canonical equivalence: "o\u0308" and "ö", but not "ö" and "Ö".
bool canonicallyEqual(std::string_view a, std::string_view b);

/// Comparisons under full case folding and canonical equivalence: "ÄPFEL" equals "äpfel",
/// composed or not, and "STRASSE" equals "Straße". The empty needle is contained in everything.
bool equalIgnoringCase(std::string_view a, std::string_view b);
bool containsIgnoringCase(std::string_view haystack, std::string_view needle);
/// The first part of `haystack` that equals `needle` under case folding, scalar by scalar; none for the
/// empty needle. "bgb" in "§ 5 BGB" -> "BGB".
std::optional<std::string_view> findIgnoringCase(std::string_view haystack, std::string_view needle);

} // namespace querlin
