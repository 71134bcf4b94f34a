#include "foundation/PlainText.h"

#include "foundation/Utf8.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace querlin {

namespace {

// A register full of bytes at once. A comparison gives 0xFF where it holds and 0 elsewhere.

template<std::size_t width>
struct BlockOf;
template<>
struct BlockOf<16> {
    using Type = std::uint8_t __attribute__((vector_size(16)));
};
template<>
struct BlockOf<32> {
    using Type = std::uint8_t __attribute__((vector_size(32)));
};
template<std::size_t width>
using Block = BlockOf<width>::Type;

/// The bytes of a block, and for each of them the two bytes before it.
template<std::size_t width>
struct Places {
    Block<width> byte;
    Block<width> before;
    Block<width> twoBefore;

    /// Reads a block at `bytes`, and the two bytes before it.
    [[gnu::always_inline]] void load(const char* bytes) {
        std::memcpy(&byte, bytes, width);
        std::memcpy(&before, bytes - 1, width);
        std::memcpy(&twoBefore, bytes - 2, width);
    }
    /// Sets bytes that are not allowed at their position to non-zero.
    [[gnu::always_inline]] void addFaults(Block<width>& faults) const {
        using Bytes = Block<width>;
        const auto continues = Bytes((byte & 0xC0) == 0x80);
        const auto isSecondOfThree = Bytes(before == 0xE2);
        const auto isAwaited = Bytes((before & 0xFE) == 0xC2) | isSecondOfThree | Bytes(twoBefore == 0xE2);
        const auto isOther = Bytes(byte >= 0xC4) & Bytes(byte != 0xE2);
        const auto isOverlong = Bytes((byte & 0xFE) == 0xC0);
        const auto isLetterlike = isSecondOfThree & Bytes(byte >= 0x84); // U+2100 and up
        faults |= (continues ^ isAwaited) | isOther | isOverlong | isLetterlike;
    }
    [[gnu::always_inline]] void lowercase(Block<width>& lower) const {
        using Bytes = Block<width>;
        const auto isCapital = Bytes(byte - 'A' < 26);
        const auto isUmlaut = Bytes(before == 0xC3) & Bytes(byte - 0x80 < 0x1F) & Bytes(byte != 0x97);
        lower = byte + ((isCapital | isUmlaut) & 0x20);
    }
};

/// Whether a scalar is incomplete at the end.
bool endsOpen(std::string_view text) {
    return static_cast<unsigned char>(text.back()) >= 0xC0 || text[text.size() - 2] == '\xE2';
}

/// Calls `take` with each block, its offset and its length: `width`, or less in a short text. The last blocks
/// may overlap. True if all bytes are allowed where they are.
template<std::size_t width, class Take>
[[gnu::always_inline]] inline bool walk(std::string_view text, Take take) {
    constexpr std::integral_constant<std::size_t, width> whole;
    const auto size = text.size();
    const bool isShort = size < width + 2;
    Block<width> faults{};
    // NOLINTBEGIN(cppcoreguidelines-pro-type-member-init): filled as they are used
    Places<width> at;
    std::array<char, (2 * width) + 2> copy;
    // NOLINTEND(cppcoreguidelines-pro-type-member-init)
    if (isShort) {
        // Padded with blanks: an incomplete scalar at the end is then followed by one.
        copy.fill(' ');
        text.copy(copy.data() + 2, size);
        for (std::size_t start = 0; start <= size; start += width) {
            at.load(copy.data() + 2 + start);
            at.addFaults(faults);
            take(at, start, std::min(width, size - start));
        }
    } else {
        copy[0] = copy[1] = ' ';
        std::memcpy(copy.data() + 2, &text.front(), width);
        at.load(copy.data() + 2);
        at.addFaults(faults);
        take(at, 0, whole);
        for (auto start = width; start < size; start += width) {
            start = std::min(start, size - width);
            at.load(&text[start]);
            at.addFaults(faults);
            take(at, start, whole);
        }
    }
    std::array<std::uint64_t, width / sizeof(std::uint64_t)> words{};
    std::memcpy(words.data(), &faults, width);
    return std::ranges::all_of(words, [](std::uint64_t word) { return word == 0; }) &&
           (isShort || !endsOpen(text));
}

template<std::size_t width>
[[gnu::always_inline]] inline bool check(std::string_view text) {
    return walk<width>(text, [](const Places<width>&, std::size_t, std::size_t) {});
}

template<std::size_t width>
[[gnu::always_inline]] inline bool lowercaseInto(std::string_view text, char* lower) {
    return walk<width>(text, [lower](const Places<width>& at, std::size_t start, auto length) {
        Block<width> block;
        at.lowercase(block);
        if (length > 0) std::memcpy(lower + start, &block, length);
    });
}

constexpr std::size_t portableWidth = 16;

#if defined(__x86_64__)
constexpr std::size_t avx2Width = 32;

[[gnu::target("avx2")]] bool checkWithAvx2(std::string_view text) { return check<avx2Width>(text); }
[[gnu::target("avx2")]] bool lowercaseWithAvx2(std::string_view text, char* lower) {
    return lowercaseInto<avx2Width>(text, lower);
}
#endif

} // namespace

bool isPlainText(std::string_view text, [[maybe_unused]] Registers registers) {
    constexpr std::size_t shortText = 32;
    if (text.size() < shortText && asciiPrefix(text) == text.size()) return true;
#if defined(__x86_64__)
    if (registers == Registers::avx2) return checkWithAvx2(text);
#endif
    return check<portableWidth>(text);
}

bool lowercasePlainText(std::string_view text, char* lower, [[maybe_unused]] Registers registers) {
#if defined(__x86_64__)
    if (registers == Registers::avx2) return lowercaseWithAvx2(text, lower);
#endif
    return lowercaseInto<portableWidth>(text, lower);
}

} // namespace querlin
