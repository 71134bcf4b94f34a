#pragma once

#include "foundation/Words.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Cuts a dictated text into tokens that keep every byte of its spacing, so that a stage can replace a
/// run of them and join the text again without disturbing anything else.
namespace querlin::Tokenizer {

struct Token {
    /// The white space before the word, and the word exactly as written.
    std::string_view raw;
    /// The word in its compared form (`comparedForm`); empty for a token that has no word.
    std::string_view normalized;

    bool operator==(const Token&) const = default;
};

/// "Hallo, Welt. " -> ("Hallo,", "hallo"), (" Welt.", "welt"), (" ", ""). A word of punctuation alone has
/// an empty `normalized` too. Not movable: its tokens are views into it and into the text.
class Split {
public:
    explicit Split(std::string_view text);
    Split(const Split&) = delete;
    Split& operator=(const Split&) = delete;

    std::span<const Token> tokens() const& { return tokens_; }
    std::span<const Token> tokens() const&& = delete;

private:
    Words words_;
    std::vector<Token> tokens_;
};

/// Joins tokens: those of `Split(x)` give `x` again. A token made by a stage has an empty
/// `normalized`; if its `raw` doesn't begin with white space it gets one blank before it, unless the text
/// so far is empty or ends in white space.
std::string join(std::span<const Token> tokens);

/// The replacement of some tokens, gap included, and the index of the next token.
struct Replacement {
    std::string text;
    std::size_t end = 0;
};
/// Calls the function at each token, in order, to replace what begins there; everything else stays byte for
/// byte.
using Replacing = std::function<std::optional<Replacement>(std::span<const Token>, std::size_t)>;
std::string replacing(std::string_view text, const Replacing& at);

/// The white space at the beginning: "\n  Wort" -> "\n  ".
std::string_view leadingWhitespace(std::string_view raw);
/// The closing punctuation at the end, `. , ; : ! ? ) " ' “ –`: "BGB)." -> ")."
std::string_view trailingPunctuation(std::string_view raw);

} // namespace querlin::Tokenizer
