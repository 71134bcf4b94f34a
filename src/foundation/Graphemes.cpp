#include "foundation/Graphemes.h"

#include "foundation/Release.h"
#include "foundation/Utf8.h"

#include <algorithm>
#include <memory>

#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/utext.h>

namespace querlin {

namespace {

/// The length of the first character, as ICU sees it.
std::size_t firstBoundary(std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    thread_local const std::unique_ptr<UBreakIterator, Release<ubrk_close>> iterator(
        ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status));
    thread_local const std::unique_ptr<UText, Release<utext_close>> handle(
        utext_openUTF8(nullptr, "", 0, &status));
    if (!iterator || !handle) return decodeScalar(text).lengthInBytes;
    utext_openUTF8(handle.get(), text.data(), static_cast<std::int64_t>(text.size()), &status);
    ubrk_setUText(iterator.get(), handle.get(), &status);
    if (U_FAILURE(status)) return decodeScalar(text).lengthInBytes;
    ubrk_first(iterator.get());
    const auto boundary = ubrk_next(iterator.get());
    return boundary == UBRK_DONE ? text.size() : static_cast<std::size_t>(boundary);
}

/// Whether two scalars of this kind in a row are always two characters.
bool standsAlone(char32_t scalar) {
    if (scalar < 0x300 || (scalar >= 0x2010 && scalar <= 0x2027)) return true; // Letters, dashes, quotes.
    switch (u_getIntPropertyValue(static_cast<UChar32>(scalar), UCHAR_GRAPHEME_CLUSTER_BREAK)) {
    case U_GCB_OTHER:
    case U_GCB_CONTROL:
    case U_GCB_LF:
    case U_GCB_CR: // Only checked as the second of a pair.
        return true;
    default:
        return false;
    }
}

/// Whether a scalar joins with the one after it, whatever that is.
bool joinsWhatFollows(char32_t scalar) {
    return scalar >= 0x300 &&
           u_getIntPropertyValue(static_cast<UChar32>(scalar), UCHAR_GRAPHEME_CLUSTER_BREAK) == U_GCB_PREPEND;
}

/// The end of the scalar that ends at `limit` or spans it: at most three bytes further. Continuation bytes
/// after those are ill-formed, each on its own.
std::size_t scalarEnd(std::string_view text, std::size_t limit) {
    const auto furthest = std::min(limit + 3, text.size());
    while (limit < furthest && (static_cast<unsigned char>(text[limit]) & 0xC0U) == 0x80) ++limit;
    return limit;
}

struct Stretch {
    std::size_t count = 0;
    std::size_t lengthInBytes = 0;
};

/// The characters of a `latinPrefix` without its last one, which may join what follows. Each scalar
/// is a character, apart from CR LF.
Stretch latinCharacters(std::string_view prefix) {
    const auto beginsScalar = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80; };
    if (prefix.empty()) return {};
    auto last = prefix.size() - 1;
    while (!beginsScalar(prefix[last])) --last;
    if (last > 0 && prefix[last] == '\n' && prefix[last - 1] == '\r') --last;
    prefix = prefix.substr(0, last);
    auto count = static_cast<std::size_t>(std::ranges::count_if(prefix, beginsScalar));
    for (auto at = prefix.find("\r\n"); at != std::string_view::npos; at = prefix.find("\r\n", at + 2))
        --count;
    return {count, prefix.size()};
}

} // namespace

std::size_t Graphemes::firstLengthBeyondLatin(std::string_view text) {
    if (text.front() == '\r') return text.substr(1).starts_with('\n') ? 2 : 1;
    const auto byteAt = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    // Dashes and quotes, U+2010 to U+2027.
    const bool isPunctuation = byteAt(0) == 0xE2 && text.size() > 3 && byteAt(1) == 0x80 &&
                               byteAt(2) >= 0x90 && byteAt(2) <= 0xA7 && byteAt(3) < firstCombiningLead;
    if (isPunctuation) return 3;
    const auto first = decodeScalar(text);
    const auto next = text.substr(first.lengthInBytes);
    if (next.empty() || (standsAlone(first.scalar) && standsAlone(firstScalar(next))))
        return first.lengthInBytes;
    // A boundary depends on the text before it and on one scalar after it. So a window is enough as long as
    // the boundary isn't the window's own end.
    for (std::size_t size = 64; size < text.size(); size *= 2) {
        const auto window = text.substr(0, scalarEnd(text, size));
        const auto boundary = firstBoundary(window);
        if (boundary < window.size()) return boundary;
    }
    return firstBoundary(text);
}

std::size_t graphemeCount(std::string_view text) {
    std::size_t count = 0;
    while (!text.empty()) {
        const auto latin = latinCharacters(text.substr(0, latinPrefix(text)));
        count += latin.count;
        text.remove_prefix(latin.lengthInBytes);
        text.remove_prefix(Graphemes::firstLength(text));
        ++count;
    }
    return count;
}

std::string_view firstGraphemes(std::string_view text, std::size_t count) {
    auto rest = text;
    for (; count > 0 && !rest.empty(); --count) rest.remove_prefix(Graphemes::firstLength(rest));
    return text.substr(0, text.size() - rest.size());
}

std::string_view lastGrapheme(std::string_view text) {
    if (text.empty()) return text;
    // From an ASCII byte on, the boundaries don't depend on the text before it, unless that joins with what
    // follows.
    const auto begins = [text](std::size_t i) {
        if (static_cast<unsigned char>(text[i]) >= 0x80 || (text[i] == '\n' && text[i - 1] == '\r'))
            return false;
        auto before = i - 1;
        while (before > 0 && i - before < 4 && (static_cast<unsigned char>(text[before]) & 0xC0U) == 0x80)
            --before;
        return !joinsWhatFollows(firstScalar(text.substr(before, i - before)));
    };
    auto at = text.size() - 1;
    while (at > 0 && !begins(at)) --at;
    auto rest = text.substr(at);
    auto last = rest;
    while (!rest.empty()) {
        last = rest.substr(0, Graphemes::firstLength(rest));
        rest.remove_prefix(last.size());
    }
    return last;
}

} // namespace querlin
