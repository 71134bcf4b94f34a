#pragma once

#include "foundation/Words.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Cuts a dictated text into tokens that keep every byte of its spacing, so that a stage can replace a
/// run of them and glue the text back without disturbing anything else.
namespace querlin::Tokenizer {

struct Token {
    /// The white space in front of the word, and the word exactly as written.
    std::string_view raw;
    /// The word in its compared form (`comparedForm`); empty for a token that has no word.
    std::string_view normalized;

    bool operator==(const Token&) const = default;
};

/// "Hallo, Welt. " -> ("Hallo,", "hallo"), (" Welt.", "welt"), (" ", ""). A word of punctuation alone has
/// an empty `normalized` too. Stays where it is: its tokens are views into it and into the text.
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

/// Glues tokens together: those of `Split(x)` are `x` again. A token that a stage has made has an empty
/// `normalized`; if its `raw` doesn't begin with white space it gets one blank in front, unless the text
/// so far is empty or ends in white space.
std::string join(std::span<const Token> tokens);

/// What takes the place of some tokens, gap included, and the token behind them.
struct Replacement {
    std::string text;
    std::size_t end = 0;
};
/// Asks at each token, from the first to the last, whether something that begins there is replaced; what
/// isn't stays byte for byte.
using Replacing = std::function<std::optional<Replacement>(std::span<const Token>, std::size_t)>;
std::string replacing(std::string_view text, const Replacing& at);

/// The white space at the beginning: "\n  Wort" -> "\n  ".
std::string_view leadingWhitespace(std::string_view raw);
/// The closing punctuation at the end, `. , ; : ! ? ) " ' “ –`: "BGB)." -> ")."
std::string_view trailingPunctuation(std::string_view raw);

} // namespace querlin::Tokenizer
