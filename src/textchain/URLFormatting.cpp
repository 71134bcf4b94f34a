#include "textchain/URLFormatting.h"

#include "foundation/Graphemes.h"
#include "foundation/Pattern.h"
#include "foundation/TextCase.h"

#include <algorithm>

namespace querlin::URLFormatting {

namespace {

constexpr std::size_t longestAddressInCharacters = 120;

std::string withoutBlanks(std::string_view text) {
    std::string compact(text);
    std::erase(compact, ' ');
    return compact;
}

std::string closedUp(std::string_view text) { return lowercase(withoutBlanks(text)); }

/// Whether a text begins with these lower-case letters; blanks and case are ignored.
bool beginsWith(std::string_view text, std::string_view beginning) {
    for (; !text.empty() && !beginning.empty(); text.remove_prefix(1)) {
        if (text.front() == ' ') continue;
        if (lowercase(text.substr(0, 1)) != beginning.substr(0, 1)) return false;
        beginning.remove_prefix(1);
    }
    return beginning.empty();
}

std::optional<std::string> closedUpMatch(Pattern::Groups match) { return closedUp(match.front()); }

} // namespace

bool looksLikeAddress(std::string_view text, AddressTest test) {
    static const Pattern bareDomain(R"(^[a-z0-9][a-z0-9\-]*(\.[a-z0-9\-]+)*\.[a-z]{2,6}(/[^\s]*)?\.?$)");
    const bool beginsLikeOne =
        beginsWith(text, "www.") || beginsWith(text, "http://") || beginsWith(text, "https://");
    if (!beginsLikeOne && test == AddressTest::strict) return false;
    const auto compact = closedUp(text);
    if (firstGraphemes(compact, longestAddressInCharacters).size() < compact.size()) return false;
    return beginsLikeOne || bareDomain.isFoundIn(compact);
}

std::string compactWholeText(std::string_view text) {
    auto compact = withoutBlanks(text);
    compact.resize(compact.find_last_not_of('.') + 1);
    return lowercase(compact);
}

std::string compactURLs(std::string_view text) {
    // No backtracking: a long run of blanks must not be tried again and again.
    static const Pattern withScheme(
        R"(\bhttps?\s*+:\s*+/\s*+/\s*+[\w\-]++(?:\s*+\.\s*+[\w\-]++)++(?:\s*+/\s*+[\w\-.]*+)*+)",
        LetterCase::ignored, Requirement::beginsWith("http"));
    static const Pattern withoutScheme(R"(\bwww\s*+\.\s*+[\w\-]++(?:\s*+\.\s*+[\w\-]++)++)",
                                       LetterCase::ignored, Requirement::beginsWith("www"));
    return withoutScheme.replaceEach(withScheme.replaceEach(std::string(text), closedUpMatch), closedUpMatch);
}

} // namespace querlin::URLFormatting
