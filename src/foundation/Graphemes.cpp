#include "foundation/Graphemes.h"

#include "foundation/Utf8.h"

#include <memory>

#include <unicode/ubrk.h>
#include <unicode/utext.h>

namespace querlin {

namespace {

struct CloseIterator {
    void operator()(UBreakIterator* iterator) const { ubrk_close(iterator); }
};
struct CloseText {
    void operator()(UText* text) const { utext_close(text); }
};

/// ICU's answer for the beginning of a text.
std::size_t firstBoundary(std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    thread_local const std::unique_ptr<UBreakIterator, CloseIterator> iterator(
        ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status));
    const std::unique_ptr<UText, CloseText> handle(
        utext_openUTF8(nullptr, text.data(), static_cast<std::int64_t>(text.size()), &status));
    ubrk_setUText(iterator.get(), handle.get(), &status);
    if (U_FAILURE(status)) return decodeScalar(text).lengthInBytes;
    ubrk_first(iterator.get());
    const auto boundary = ubrk_next(iterator.get());
    return boundary == UBRK_DONE ? text.size() : static_cast<std::size_t>(boundary);
}

/// The end of the scalar that ends at `limit` or reaches over it.
std::size_t scalarEnd(std::string_view text, std::size_t limit) {
    while (limit < text.size() && (static_cast<unsigned char>(text[limit]) & 0xC0U) == 0x80) ++limit;
    return limit;
}

} // namespace

std::size_t Graphemes::firstLengthBeyondAscii(std::string_view text) {
    const auto first = decodeScalar(text);
    const auto next = text.substr(first.lengthInBytes);
    if (first.scalar == '\r') return next.starts_with('\n') ? 2 : 1;
    if (first.scalar < 0x300 && (next.empty() || static_cast<unsigned char>(next[0]) < firstCombiningLead)) {
        return first.lengthInBytes;
    }
    // A boundary depends on what stands before it and on one scalar behind it. So a window is enough
    // as long as the boundary isn't the window's own end.
    for (std::size_t size = 64; size < text.size(); size *= 2) {
        const auto window = text.substr(0, scalarEnd(text, size));
        const auto boundary = firstBoundary(window);
        if (boundary < window.size()) return boundary;
    }
    return firstBoundary(text);
}

std::size_t graphemeCount(std::string_view text) {
    std::size_t count = 0;
    for (; !text.empty(); ++count) text.remove_prefix(Graphemes::firstLength(text));
    return count;
}

std::string_view firstGraphemes(std::string_view text, std::size_t count) {
    auto rest = text;
    for (; count > 0 && !rest.empty(); --count) rest.remove_prefix(Graphemes::firstLength(rest));
    return text.substr(0, text.size() - rest.size());
}

} // namespace querlin
