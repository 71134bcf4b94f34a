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
/// no match. Whoever ignores the case gets simple case folding: "ß" is not "ss".
///
/// Takes any bytes; ill-formed ones become U+FFFD. Composed and decomposed letters are different to it.
/// May be used on any thread.
class Pattern {
public:
    /// Expressions are part of the program: one that doesn't compile throws std::logic_error.
    explicit Pattern(std::string_view expression, LetterCase letterCase = LetterCase::counts,
                     Requirement requirement = {});
    ~Pattern();
    Pattern(Pattern&&) noexcept;
    Pattern& operator=(Pattern&&) noexcept;

    bool isFoundIn(std::string_view text) const;

    /// The whole match, and behind it its groups; a group that took no part is empty.
    using Groups = std::span<const std::string_view>;
    /// What a match becomes; nothing leaves it as it was.
    using Replacement = std::function<std::optional<std::string>(Groups)>;
    /// Goes over the matches from first to last, on the text as it is given.
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

/// Replacements that run over a whole text one after the other, each over the result of the one before.
/// A rule whose requirement isn't met costs next to nothing.
class RuleList {
public:
    RuleList();
    /// Its strings are copied.
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
