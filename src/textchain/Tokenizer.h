#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Cuts a dictated text into tokens that keep every byte of its spacing, so that a stage can replace a
/// run of them and glue the text back without disturbing anything else.
namespace querlin::Tokenizer {

struct Token {
    /// The white space in front of the word, and the word exactly as written.
    std::string raw;
    /// The word in its compared form (`comparedForm`); empty for a token that has no word.
    std::string normalized;

    bool operator==(const Token&) const = default;
};

/// "Hallo, Welt. " -> ("Hallo,", "hallo"), (" Welt.", "welt"), (" ", ""). A word of punctuation alone has
/// an empty `normalized` too.
std::vector<Token> split(std::string_view text);

/// Glues tokens together: `join(split(x))` is `x`. A token that a stage has made has an empty
/// `normalized`; if its `raw` doesn't begin with white space it gets one blank in front, unless the text
/// so far is empty or ends in white space.
std::string join(std::span<const Token> tokens);

/// The white space at the beginning: "\n  Wort" -> "\n  ".
std::string_view leadingWhitespace(std::string_view raw);
/// The closing punctuation at the end, `. , ; : ! ? ) " ' “ –`: "BGB)." -> ")."
std::string_view trailingPunctuation(std::string_view raw);

} // namespace querlin::Tokenizer
