#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace querlin {

/// A set of byte values, for example of the possible first bytes of something.
class ByteSet {
public:
    constexpr ByteSet() = default;
    constexpr explicit ByteSet(std::string_view bytes) {
        for (const char byte : bytes) add(static_cast<unsigned char>(byte));
    }
    static constexpr ByteSet range(unsigned char first, unsigned char last) {
        ByteSet set;
        for (unsigned byte = first; byte <= last; ++byte) set.add(static_cast<unsigned char>(byte));
        return set;
    }
    constexpr ByteSet operator|(const ByteSet& other) const {
        auto set = *this;
        for (std::size_t i = 0; i < words_.size(); ++i) set.words_[i] |= other.words_[i];
        return set;
    }
    constexpr ByteSet operator~() const {
        auto set = *this;
        for (auto& word : set.words_) word = ~word;
        return set;
    }
    constexpr bool contains(unsigned char byte) const {
        return (words_[byte / 64U] >> (byte % 64U) & 1U) != 0;
    }
    constexpr void add(unsigned char byte) { words_[byte / 64U] |= std::uint64_t{1} << (byte % 64U); }

private:
    std::array<std::uint64_t, 4> words_{};
};

/// Maps bytes to 64 classes: bytes that patterns distinguish have classes of their own.
namespace ByteClass {
inline constexpr auto ofByte = [] {
    constexpr std::string_view apart =
        "abcdefghijklmnopqrstuvwxyz \t\n.,;:!?()-/\"'\xC2\xC3\xE2\x80\x84\x93\x9C\x9E"
        "\x9F\xA0\xA4\xA7\xB6\xBC";
    constexpr std::uint8_t digit = 60;
    constexpr std::uint8_t otherSpace = 61;
    constexpr std::uint8_t otherAscii = 62;
    constexpr std::uint8_t other = 63;
    static_assert(apart.size() <= digit);
    std::array<std::uint8_t, 256> classes{};
    for (unsigned byte = 0; byte < classes.size(); ++byte) classes[byte] = byte < 0x80 ? otherAscii : other;
    for (const char byte : std::string_view("\v\f\r")) classes[static_cast<unsigned char>(byte)] = otherSpace;
    for (unsigned byte = '0'; byte <= '9'; ++byte) classes[byte] = digit;
    for (std::size_t i = 0; i < apart.size(); ++i)
        classes[static_cast<unsigned char>(apart[i])] = static_cast<std::uint8_t>(i);
    return classes;
}();
constexpr std::uint64_t bitOf(char byte) {
    return std::uint64_t{1} << ofByte[static_cast<unsigned char>(byte)];
}
/// The classes of all bytes of a set.
constexpr std::uint64_t bitsOf(const ByteSet& bytes) {
    std::uint64_t bits = 0;
    for (unsigned byte = 0; byte < ofByte.size(); ++byte) {
        if (bytes.contains(static_cast<unsigned char>(byte))) bits |= bitOf(static_cast<char>(byte));
    }
    return bits;
}
} // namespace ByteClass

/// First and last bytes of the character classes used in patterns. They may contain too many, never too few.
namespace Bytes {
inline constexpr ByteSet beyondAscii = ByteSet::range(0x80, 0xFF);
inline constexpr ByteSet asciiWhitespace{" \t\n\v\f\r"};
/// First bytes of white space, which includes U+0085 and U+00A0, U+1680, U+2000 to U+205F, U+3000.
inline constexpr ByteSet whitespaceBegins = asciiWhitespace | ByteSet("\xC2\xE1\xE2\xE3");
/// Last bytes of white space, in the same order.
inline constexpr ByteSet whitespaceEnds =
    asciiWhitespace | ByteSet("\x85\xA0\xA8\xA9\xAF\x9F") | ByteSet::range(0x80, 0x8A);
inline constexpr ByteSet letterBegins = ByteSet::range('a', 'z') | beyondAscii;
inline constexpr ByteSet digits = ByteSet::range('0', '9');
} // namespace Bytes

/// A condition that a text must meet for a pattern to match anywhere in it, simple enough that checking it
/// costs next to nothing. It refers to the text in lower case (see `FoldedText`).
///
/// Invariant: the condition must be necessary. If it asks for too much, a rule silently never fires.
class Requirement {
public:
    enum class Kind : std::uint8_t { none, literal, beginning, pair, repeatedWord };

    /// No condition: the pattern is always tried, everywhere.
    constexpr Requirement() = default;
    /// One of these texts, separated by "|"; each in lower case and of at least two bytes: "märz|maerz".
    static constexpr Requirement oneOf(std::string_view literals) {
        Requirement requirement;
        requirement.kind_ = Kind::literal;
        requirement.literals_ = literals;
        return requirement;
    }
    /// The same, and every match begins with one of them: the pattern is tried only there.
    static constexpr Requirement beginsWith(std::string_view literals) {
        auto requirement = oneOf(literals);
        requirement.kind_ = Kind::beginning;
        return requirement;
    }
    /// A byte of one set directly before a byte of another.
    static constexpr Requirement pair(const ByteSet& first, const ByteSet& second) {
        Requirement requirement;
        requirement.kind_ = Kind::pair;
        requirement.first_ = ByteClass::bitsOf(first);
        requirement.second_ = ByteClass::bitsOf(second);
        return requirement;
    }
    /// A word, in any case, directly followed by itself.
    static constexpr Requirement repeatedWord() {
        Requirement requirement;
        requirement.kind_ = Kind::repeatedWord;
        return requirement;
    }

    constexpr Kind kind() const { return kind_; }
    /// For a single check; several checks of one text are quicker with a `TextProfile`.
    bool isMetBy(std::string_view text) const;

    /// Whether `test` holds for one of the literals.
    template<class Test>
    constexpr bool anyLiteral(Test test) const {
        for (auto rest = literals_;;) {
            const auto end = rest.find('|');
            if (test(rest.substr(0, end))) return true;
            if (end == std::string_view::npos) return false;
            rest.remove_prefix(end + 1);
        }
    }

private:
    friend class TextProfile;

    Kind kind_ = Kind::none;
    std::string_view literals_;
    /// Classes of bytes.
    std::uint64_t first_ = 0;
    std::uint64_t second_ = 0;
};

/// A text in lower case, to look for literals in: whatever a case-insensitive pattern matches with a-z, ä, ö,
/// ü and ß is folded to it, so that the long s (U+017F) becomes "s", the Kelvin sign "k" and the capital ẞ
/// "ß".
class FoldedText {
public:
    void read(std::string_view text);
    std::string_view text() const { return folded_; }
    /// Whether offsets are the same in both.
    bool keepsPlaces() const { return keepsPlaces_; }

private:
    std::string folded_;
    bool keepsPlaces_ = true;
};

/// What a text contains, gathered in one pass: which classes of bytes follow which. The text must outlive the
/// profile.
class TextProfile {
public:
    void read(std::string_view text);

    struct Range {
        std::size_t start = 0;
        std::size_t end = 0;
    };
    /// The text has been replaced by this one, of which only these ranges are new. Removed parts may still
    /// count as contained.
    void change(std::string_view text, std::span<const Range> written);

    /// False only if nothing with this requirement can match.
    bool meets(const Requirement& requirement);
    const FoldedText& folded();

private:
    void addPairs(std::string_view folded);
    bool holds(std::string_view literal);

    std::string_view text_;
    FoldedText folded_;
    bool isFolded_ = false;
    /// For each class of bytes the classes that directly follow it somewhere.
    std::array<std::uint64_t, 64> followers_{};
};

} // namespace querlin
