#include "foundation/Pattern.h"

#include "foundation/Release.h"
#include "foundation/Utf8.h"

#include <algorithm>
#include <array>
#include <new>
#include <stdexcept>
#include <utility>

#define PCRE2_CODE_UNIT_WIDTH 8 // NOLINT: required by the library
#include <pcre2.h>

namespace querlin {

namespace {

using Code = std::unique_ptr<pcre2_code, Release<pcre2_code_free>>;
using MatchData = std::unique_ptr<pcre2_match_data, Release<pcre2_match_data_free>>;
using MatchContext = std::unique_ptr<pcre2_match_context, Release<pcre2_match_context_free>>;
using JitStack = std::unique_ptr<pcre2_jit_stack, Release<pcre2_jit_stack_free>>;

std::string wellFormed(std::string text) { return isValidUtf8(text) ? std::move(text) : validUtf8(text); }

/// The library's view of a text.
PCRE2_SPTR subjectOf(std::string_view text) {
    return reinterpret_cast<PCRE2_SPTR>(text.data()); // NOLINT: its bytes are unsigned
}

/// The maximum number of groups in a pattern, including the whole match.
constexpr std::uint32_t mostGroups = 10;

/// What matching needs besides the pattern; one for each thread.
struct Workplace {
    static Workplace& ofThisThread() {
        thread_local Workplace workplace;
        return workplace;
    }

    Workplace() :
        data(pcre2_match_data_create(mostGroups, nullptr)), context(pcre2_match_context_create(nullptr)) {
        constexpr std::size_t firstBytes = 32U << 10U;
        constexpr std::size_t mostBytes = 1U << 20U; // Matches that need more go to the interpreter.
        stack.reset(pcre2_jit_stack_create(firstBytes, mostBytes, nullptr));
        if (!data || !context) throw std::bad_alloc();
        pcre2_jit_stack_assign(context.get(), nullptr, stack.get());
    }

    MatchData data;
    MatchContext context;
    JitStack stack;
};

std::string errorText(int code) {
    std::array<PCRE2_UCHAR, 256> buffer{};
    pcre2_get_error_message(code, buffer.data(), buffer.size());
    return {buffer.begin(), std::ranges::find(buffer, 0)};
}

/// A compiled expression.
struct Expression {
    Expression(std::string_view expression, LetterCase letterCase, const Requirement& required) :
        requirement(required) {
        const auto options =
            PCRE2_UTF | PCRE2_UCP | (letterCase == LetterCase::ignored ? PCRE2_CASELESS : 0U) |
            (requirement.kind() == Requirement::Kind::beginning ? PCRE2_ANCHORED | PCRE2_NO_START_OPTIMIZE
                                                                : 0U);
        int error = 0;
        std::size_t offset = 0;
        code.reset(
            pcre2_compile(subjectOf(expression), expression.size(), options, &error, &offset, nullptr));
        if (!code) throw std::logic_error(std::string(expression) + ": " + errorText(error));
        std::uint32_t groups = 0;
        pcre2_pattern_info(code.get(), PCRE2_INFO_CAPTURECOUNT, &groups);
        if (groups >= mostGroups) throw std::logic_error(std::string(expression) + ": too many groups");
        pcre2_jit_compile(code.get(), PCRE2_JIT_COMPLETE); // If this fails, the interpreter matches.
    }

    Code code;
    Requirement requirement;
};

/// The positions of any of several literals, in order.
class Candidates {
public:
    Candidates(const Requirement& requirement, const FoldedText& folded, std::string_view text) :
        text_(text), folded_(folded) {
        requirement.anyLiteral([this](std::string_view literal) {
            if (count_ == next_.size()) throw std::logic_error("too many beginnings");
            next_[count_++] = {literal, 0, true};
            return false;
        });
    }

    /// The first position at or after `from`, which never decreases; npos if there is none.
    std::size_t atOrBehind(std::size_t from) {
        if (!folded_.keepsPlaces()) return from < text_.size() ? from : std::string_view::npos;
        auto first = std::string_view::npos;
        for (auto& next : std::span(next_).first(count_)) {
            if (next.isUnknown || next.place < from) next.place = folded_.text().find(next.literal, from);
            next.isUnknown = false;
            first = std::min(first, next.place);
        }
        return first;
    }

private:
    struct Next {
        std::string_view literal;
        std::size_t place = 0;
        bool isUnknown = true;
    };
    std::string_view text_;
    const FoldedText& folded_;
    std::array<Next, 4> next_;
    std::size_t count_ = 0;
};

/// The matches of an expression in a well-formed text, from first to last.
class Search {
public:
    Search(const Expression& expression, std::string_view text, const FoldedText& folded) :
        code_(expression.code.get()), text_(text) {
        if (expression.requirement.kind() == Requirement::Kind::beginning)
            candidates_.emplace(expression.requirement, folded, text);
    }

    bool next() {
        while (from_ <= text_.size()) {
            const auto start = candidates_ ? candidates_->atOrBehind(from_) : from_;
            if (start == std::string_view::npos) return false;
            count_ = match(start);
            if (count_ > 0) {
                from_ = end() + (end() == this->start() ? lengthOfScalar(end()) : 0);
                return true;
            }
            if (!candidates_) return false;
            from_ = start + lengthOfScalar(start);
        }
        return false;
    }
    std::size_t start() const { return offsets()[0]; }
    std::size_t end() const { return offsets()[1]; }
    /// Empty if the group did not take part.
    std::string_view group(std::size_t number) const {
        const auto* range = offsets() + (2 * number);
        if (number >= groupCount() || range[0] == PCRE2_UNSET) return {};
        return text_.substr(range[0], range[1] - range[0]);
    }
    std::size_t groupCount() const { return static_cast<std::size_t>(count_); }

private:
    const std::size_t* offsets() const { return pcre2_get_ovector_pointer(workplace_.data.get()); }
    std::size_t lengthOfScalar(std::size_t at) const {
        return std::max<std::size_t>(1, decodeScalar(text_.substr(at)).lengthInBytes);
    }

    int match(std::size_t from) {
        const auto* subject = subjectOf(text_);
        auto result = pcre2_jit_match(code_, subject, text_.size(), from, 0, workplace_.data.get(),
                                      workplace_.context.get());
        if (result == PCRE2_ERROR_JIT_BADOPTION || result == PCRE2_ERROR_JIT_STACKLIMIT) {
            result = pcre2_match(code_, subject, text_.size(), from, PCRE2_NO_UTF_CHECK | PCRE2_NO_JIT,
                                 workplace_.data.get(), workplace_.context.get());
        }
        return result;
    }

    const pcre2_code* code_;
    std::string_view text_;
    std::optional<Candidates> candidates_;
    Workplace& workplace_ = Workplace::ofThisThread();
    std::size_t from_ = 0;
    int count_ = 0;
};

} // namespace

// Pattern

struct Pattern::Compiled {
    Expression expression;
};

Pattern::Pattern(std::string_view expression, LetterCase letterCase, Requirement requirement) :
    compiled_(std::make_unique<Compiled>(Compiled{{expression, letterCase, requirement}})) {}
Pattern::~Pattern() = default;
Pattern::Pattern(Pattern&&) noexcept = default;
Pattern& Pattern::operator=(Pattern&&) noexcept = default;

bool Pattern::isFoundIn(std::string_view text) const {
    const auto& expression = compiled_->expression;
    const auto valid = validUtf8(text);
    if (!expression.requirement.isMetBy(valid)) return false;
    FoldedText folded;
    folded.read(valid);
    return Search(expression, valid, folded).next();
}

std::string Pattern::replaceEach(std::string text, const Replacement& replacement) const {
    const auto& expression = compiled_->expression;
    auto valid = wellFormed(std::move(text));
    if (!expression.requirement.isMetBy(valid)) return valid;
    FoldedText folded;
    if (expression.requirement.kind() == Requirement::Kind::beginning) folded.read(valid);
    std::string result;
    std::size_t copied = 0;
    std::vector<std::string_view> groups;
    for (Search search(expression, valid, folded); search.next();) {
        // The groups are gathered first: the replacement may use patterns of its own.
        const auto [start, end] = std::pair(search.start(), search.end());
        groups.clear();
        for (std::size_t i = 0; i < search.groupCount(); ++i) groups.push_back(search.group(i));
        const auto replaced = replacement(groups);
        if (!replaced) continue;
        result.append(valid, copied, start - copied).append(*replaced);
        copied = end;
    }
    return result.append(valid, copied);
}

// RuleList

struct RuleList::Compiled {
    Expression expression;
    std::string replacement;

    void appendReplacement(std::string& text, const Search& match) const {
        for (std::size_t i = 0; i < replacement.size(); ++i) {
            const bool isGroup = replacement[i] == '$' && i + 1 < replacement.size();
            if (isGroup) {
                text += match.group(static_cast<std::size_t>(replacement[++i] - '0'));
            } else {
                text += replacement[i];
            }
        }
    }

    /// Writes the text with all matches replaced to `result` and the ranges of the replacements to `written`.
    /// False if there is no match; both are unspecified then.
    bool replaceAll(std::string_view text, const FoldedText& folded, std::string& result,
                    std::vector<TextProfile::Range>& written) const {
        result.clear();
        written.clear();
        std::size_t copied = 0;
        for (Search search(expression, text, folded); search.next(); copied = search.end()) {
            result += text.substr(copied, search.start() - copied);
            const auto start = result.size();
            appendReplacement(result, search);
            written.push_back({start, result.size()});
        }
        if (written.empty()) return false;
        result += text.substr(copied);
        return true;
    }
};

RuleList::RuleList() = default;
void RuleList::add(const Rule& rule) {
    rules_.push_back({{rule.pattern, rule.letterCase, rule.requirement}, std::string(rule.replacement)});
}
RuleList::~RuleList() = default;
RuleList::RuleList(RuleList&&) noexcept = default;
RuleList& RuleList::operator=(RuleList&&) noexcept = default;

std::string RuleList::apply(std::string text) const {
    auto result = wellFormed(std::move(text));
    static thread_local std::string next;
    static thread_local std::vector<TextProfile::Range> written;
    static thread_local TextProfile profile;
    profile.read(result);
    for (const auto& rule : rules_) {
        if (!profile.meets(rule.expression.requirement)) continue;
        if (!rule.replaceAll(result, profile.folded(), next, written)) continue;
        result.swap(next);
        profile.change(result, written);
    }
    return result;
}

} // namespace querlin
