#pragma once

#include "foundation/Requirement.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace querlin {

enum class LetterCase : std::uint8_t { counts, ignored };

/// A regular expression, compiled once: Perl's syntax over UTF-8 with the Unicode meaning of `\w`, `\s`,
/// `\d` and `\b`. Write it so that it can't take quadratic time; what exceeds the engine's limits counts as
/// no match. Case-insensitive matching uses simple case folding: "ß" is not "ss".
///
/// Ill-formed bytes become U+FFFD. Composed and decomposed letters are different. Any thread.
class Pattern {
public:
    /// Expressions are part of the program: an invalid one throws std::logic_error.
    explicit Pattern(std::string_view expression, LetterCase letterCase = LetterCase::counts,
                     Requirement requirement = {});
    ~Pattern();
    Pattern(Pattern&&) noexcept;
    Pattern& operator=(Pattern&&) noexcept;

    bool isFoundIn(std::string_view text) const;

    /// The whole match, then its groups; a group that did not take part is empty.
    using Groups = std::span<const std::string_view>;
    /// The replacement of a match; unset leaves it unchanged.
    using Replacement = std::function<std::optional<std::string>(Groups)>;
    /// Replaces the matches in order; all of them are looked for in the original text.
    std::string replaceEach(std::string text, const Replacement& replacement) const;

private:
    struct Compiled;
    std::unique_ptr<Compiled> compiled_;
};

/// One replacement of a list. In `replacement` "$1" to "$9" stand for groups.
struct Rule {
    std::string_view pattern;
    std::string_view replacement;
    Requirement requirement;
    LetterCase letterCase = LetterCase::counts;
};

/// Rules that are applied to a text one after the other, each to the result of the one before. A rule whose
/// requirement isn't met costs next to nothing.
class RuleList {
public:
    RuleList();
    /// Copies the strings of the rules.
    void add(const Rule& rule);
    explicit RuleList(std::span<const Rule> rules) : RuleList() {
        for (const auto& rule : rules) add(rule);
    }
    ~RuleList();
    RuleList(RuleList&&) noexcept;
    RuleList& operator=(RuleList&&) noexcept;

    std::string apply(std::string text) const;

private:
    struct Compiled;
    std::vector<Compiled> rules_;
};

} // namespace querlin
