#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

/// German number words, as they are spoken: "achtzehnhundertvierzehn", "zwei", "fuenfundzwanzig".
namespace querlin::GermanNumberWords {

/// The value of one word in any case; surrounding blanks and tabs are ignored. Unset for anything but a
/// number word ("hundertundeins", "Jahrhundert", "sechszehn").
std::optional<std::int64_t> parseWord(std::string_view word);
bool isNumberWord(std::string_view word);

/// The digits of a sequence of number words. Groups are concatenated, "neunzehn" "sechsundneunzig" ->
/// "1996"; with a word of 100 or more the values are added, "achtzehnhundert" "vierzehn" -> "1814".
/// Unset for the empty sequence and if one of the words is not a number.
std::optional<std::string> digits(std::span<const std::string_view> words);

} // namespace querlin::GermanNumberWords
