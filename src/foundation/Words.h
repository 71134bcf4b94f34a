#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace querlin {

/// What is taken off a word's ends to compare it: `. , ; : ! ? ( ) " ' „ “ – —`
inline constexpr std::u32string_view wordPunctuation = U".,;:!?()\"'„“–—";

/// A word as written, and the white space in front of it. Views into the text.
struct GapAndWord {
    std::string_view gap;
    std::string_view word;
};

struct WordsOfText {
    std::vector<GapAndWord> words;
    /// The white space behind the last word.
    std::string_view rest;
};

/// Cuts a text at its white space: " Hallo,  Welt\n" -> (" ", "Hallo,"), ("  ", "Welt"), rest "\n". All
/// pieces one behind the other are the text again.
WordsOfText splitIntoWords(std::string_view text);

/// The form in which two words are compared: without punctuation at the ends, lower case, composed.
/// „BGB“. -> bgb
std::string comparedForm(std::string_view word);

} // namespace querlin
