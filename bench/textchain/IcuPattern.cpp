// The peer's regular expressions: the same classes on ICU's engine, rule by rule with `replaceAll`, the
// straightforward way. Requirements are not looked at.

#include "IcuPattern.h"

#include "foundation/Pattern.h"
#include "foundation/Utf8.h"

#include <stdexcept>

#include <unicode/regex.h>
#include <unicode/unistr.h>

namespace querlin {

namespace {

std::vector<CompiledExpression>& seenExpressions() {
    static std::vector<CompiledExpression> expressions;
    return expressions;
}

bool keepsMatchers = false;

/// An expression compiled once. A matcher belongs to one thread, so each use makes one; the peer may be told
/// to keep them all the same, which only a program of one thread could.
class Expression {
public:
    Expression(std::string_view expression, LetterCase letterCase) {
        seenExpressions().push_back({std::string(expression), letterCase == LetterCase::ignored});
        UErrorCode status = U_ZERO_ERROR;
        pattern_.reset(icu::RegexPattern::compile(
            icu::UnicodeString::fromUTF8(std::string(expression)),
            letterCase == LetterCase::ignored ? std::uint32_t{UREGEX_CASE_INSENSITIVE} : 0U, status));
        if (U_FAILURE(status)) throw std::logic_error(std::string(expression));
        kept_.reset(pattern_->matcher(status));
    }

    /// Hands a matcher of the input to `use`.
    template<class Use>
    auto with(const icu::UnicodeString& input, Use use) const {
        if (keepsMatchers) return use(kept_->reset(input));
        UErrorCode status = U_ZERO_ERROR;
        const std::unique_ptr<icu::RegexMatcher> matcher(pattern_->matcher(input, status));
        return use(*matcher);
    }

private:
    std::unique_ptr<icu::RegexPattern> pattern_;
    std::unique_ptr<icu::RegexMatcher> kept_;
};

std::string utf8(const icu::UnicodeString& text) {
    std::string result;
    text.toUTF8String(result);
    return result;
}

} // namespace

const std::vector<CompiledExpression>& compiledExpressions() { return seenExpressions(); }

void keepMatchers(bool keeps) { keepsMatchers = keeps; }

struct Pattern::Compiled {
    Expression expression;
};

Pattern::Pattern(std::string_view expression, LetterCase letterCase, Requirement /*requirement*/) :
    compiled_(std::make_unique<Compiled>(Compiled{{expression, letterCase}})) {}
Pattern::~Pattern() = default;
Pattern::Pattern(Pattern&&) noexcept = default;
Pattern& Pattern::operator=(Pattern&&) noexcept = default;

bool Pattern::isFoundIn(std::string_view text) const {
    const auto input = icu::UnicodeString::fromUTF8(std::string(text));
    return compiled_->expression.with(input, [](icu::RegexMatcher& matcher) { return matcher.find() != 0; });
}

std::string Pattern::replaceEach(std::string text, const Replacement& replacement) const {
    const auto input = icu::UnicodeString::fromUTF8(text);
    return compiled_->expression.with(input, [&](icu::RegexMatcher& matcher) {
        UErrorCode status = U_ZERO_ERROR;
        icu::UnicodeString result;
        std::int32_t copied = 0;
        while (matcher.find() != 0) {
            std::vector<std::string> groups;
            for (std::int32_t i = 0; i <= matcher.groupCount(); ++i)
                groups.push_back(utf8(matcher.group(i, status)));
            const std::vector<std::string_view> views(groups.begin(), groups.end());
            const auto replaced = replacement(views);
            if (!replaced) continue;
            const auto start = matcher.start(status);
            result.append(input, copied, start - copied).append(icu::UnicodeString::fromUTF8(*replaced));
            copied = matcher.end(status);
        }
        return utf8(result.append(input, copied, input.length() - copied));
    });
}

struct RuleList::Compiled {
    Expression expression;
    icu::UnicodeString replacement;
};

RuleList::RuleList() = default;
void RuleList::add(const Rule& rule) {
    rules_.push_back(
        {{rule.pattern, rule.letterCase}, icu::UnicodeString::fromUTF8(std::string(rule.replacement))});
}
RuleList::~RuleList() = default;
RuleList::RuleList(RuleList&&) noexcept = default;
RuleList& RuleList::operator=(RuleList&&) noexcept = default;

std::string RuleList::apply(std::string text) const {
    auto result = icu::UnicodeString::fromUTF8(text);
    for (const auto& rule : rules_) {
        result = rule.expression.with(result, [&rule](icu::RegexMatcher& matcher) {
            UErrorCode status = U_ZERO_ERROR;
            return matcher.replaceAll(rule.replacement, status);
        });
    }
    return utf8(result);
}

} // namespace querlin
