#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

/// German number words, as they are spoken: "achtzehnhundertvierzehn", "zwei", "fuenfundzwanzig".
namespace querlin::GermanNumberWords {

/// The value of one word, whatever its case; blanks and tabs around it don't count. Nothing for what is
/// no number word ("hundertundeins", "Jahrhundert", "sechszehn").
std::optional<std::int64_t> parseWord(std::string_view word);
bool isNumberWord(std::string_view word);

/// The digits of a sequence of number words. Groups stand side by side, "neunzehn" "sechsundneunzig" ->
/// "1996"; with a word of 100 or more in it the values add up, "achtzehnhundert" "vierzehn" -> "1814".
/// Nothing for the empty sequence and where one of the words is no number.
std::optional<std::string> digits(std::span<const std::string_view> words);

} // namespace querlin::GermanNumberWords
