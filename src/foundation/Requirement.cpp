#include "foundation/Requirement.h"

#include "foundation/Replacing.h"
#include "foundation/TextCase.h"

#include <algorithm>
#include <bit>

namespace querlin {

namespace {

constexpr std::string_view longS = "\u017F";
constexpr std::string_view kelvinSign = "\u212A";
constexpr std::string_view capitalSharpS = "ẞ";

/// Whether any of the three may occur. Like the other loops over whole texts here it works on bytes and
/// without branches, so that the compiler can vectorise it: equal bytes leave a difference of zero.
bool mayHoldOddLetters(std::string_view text) {
    std::uint8_t least = 0xFF;
    for (std::size_t i = 1; i < text.size(); ++i) {
        const auto differs = [first = static_cast<std::uint8_t>(text[i - 1]),
                              second = static_cast<std::uint8_t>(text[i])](std::uint8_t a, std::uint8_t b) {
            return static_cast<std::uint8_t>((first ^ a) | (second ^ b));
        };
        least = std::min({least, differs(0xC5, 0xBF), differs(0xE2, 0x84), differs(0xE1, 0xBA)});
    }
    return least == 0;
}

/// Three bytes of a literal, or two if it is short, that no odd letter can fold to; empty if there are none.
std::string_view probeOf(std::string_view literal) {
    const auto length = std::min<std::size_t>(3, literal.size());
    for (std::size_t start = 0; start + length <= literal.size(); ++start) {
        const auto probe = literal.substr(start, length);
        if (probe.find_first_of("sk\xC3\x9F") == std::string_view::npos) return probe;
    }
    return {};
}

/// Whether three bytes of a lower-case literal (or its two) occur next to each other in a text, folded or
/// not. May be wrongly true, never wrongly false where an odd letter might fold to one of them.
bool mayHold(std::string_view text, std::string_view literal) {
    const auto probe = probeOf(literal);
    if (probe.empty()) return true;
    if (text.size() < literal.size()) return false;
    const auto folded = [](char byte) {
        return static_cast<std::uint8_t>(static_cast<std::uint8_t>(byte) | 0x20U);
    };
    const auto first = folded(probe[0]);
    const auto second = folded(probe[1]);
    const auto third = folded(probe.back());
    const std::size_t last = probe.size() - 1;
    std::uint8_t least = 0xFF;
    for (std::size_t i = 0; i + last < text.size(); ++i) {
        const auto difference = static_cast<std::uint8_t>(
            (folded(text[i]) ^ first) | (folded(text[i + 1]) ^ second) | (folded(text[i + last]) ^ third));
        least = std::min(least, difference);
    }
    return least == 0;
}

/// The end of the run of lower-case letters of ASCII and U+00E0 to U+00FF at a position.
std::size_t endOfLetters(std::string_view folded, std::size_t at) {
    while (at < folded.size()) {
        if (folded[at] >= 'a' && folded[at] <= 'z') {
            ++at;
        } else if (folded[at] == '\xC3') {
            at = std::min(at + 2, folded.size());
        } else {
            break;
        }
    }
    return at;
}

/// Dashes and quotes, U+2010 to U+201F.
bool isPunctuation(std::string_view folded, std::size_t at) {
    const auto bytes = folded.substr(at, 3);
    return bytes.starts_with("\xE2\x80") && bytes.size() == 3 &&
           (static_cast<unsigned char>(bytes[2]) & 0xF0U) == 0x90;
}

/// Whether a run of letters may be followed by itself after white space. True also if the text has letters
/// or white space that this function doesn't know.
bool mayRepeatWord(std::string_view folded) {
    std::string_view before; // The previous word, while only white space has followed it.
    for (std::size_t at = 0; at < folded.size();) {
        if (const auto end = endOfLetters(folded, at); end > at) {
            const auto word = folded.substr(at, end - at);
            if (word == before) return true;
            before = word;
            at = end;
        } else if (static_cast<unsigned char>(folded[at]) < 0x80) {
            if (!Bytes::asciiWhitespace.contains(static_cast<unsigned char>(folded[at]))) before = {};
            ++at;
        } else if (isPunctuation(folded, at)) {
            before = {};
            at += 3;
        } else {
            return true;
        }
    }
    return false;
}

/// Whether the byte is a continuation byte.
bool continuesScalar(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80; }

} // namespace

void FoldedText::read(std::string_view text) {
    folded_.resize(text.size());
    lowercaseLatin1(text, folded_.data());
    if (mayHoldOddLetters(text)) {
        folded_ = replacingAll(folded_, longS, "s");
        folded_ = replacingAll(folded_, kelvinSign, "k");
        folded_ = replacingAll(folded_, capitalSharpS, "ß");
    }
    keepsPlaces_ = folded_.size() == text.size();
}

bool Requirement::isMetBy(std::string_view text) const {
    if (kind_ == Kind::none) return true;
    const bool isLiteral = kind_ == Kind::literal || kind_ == Kind::beginning;
    if (isLiteral && !anyLiteral([text](std::string_view literal) { return mayHold(text, literal); }))
        return false;
    static thread_local FoldedText folded;
    folded.read(text);
    const auto bytes = folded.text();
    if (kind_ == Kind::repeatedWord) return mayRepeatWord(bytes);
    if (isLiteral) return anyLiteral([bytes](std::string_view literal) { return bytes.contains(literal); });
    for (std::size_t i = 1; i < bytes.size(); ++i) {
        if ((first_ & ByteClass::bitOf(bytes[i - 1])) != 0 && (second_ & ByteClass::bitOf(bytes[i])) != 0)
            return true;
    }
    return false;
}

void TextProfile::read(std::string_view text) {
    text_ = text;
    folded_.read(text);
    isFolded_ = true;
    followers_.fill(0);
    addPairs(folded_.text());
}

void TextProfile::change(std::string_view text, std::span<const Range> written) {
    text_ = text;
    isFolded_ = false;
    for (auto [start, end] : written) {
        // Extended to whole characters on either side.
        if (start > 0) --start;
        while (start > 0 && continuesScalar(text[start])) --start;
        if (end < text.size()) ++end;
        while (end < text.size() && continuesScalar(text[end])) ++end;
        folded_.read(text.substr(start, end - start));
        addPairs(folded_.text());
    }
}

const FoldedText& TextProfile::folded() {
    if (!isFolded_) folded_.read(text_);
    isFolded_ = true;
    return folded_;
}

void TextProfile::addPairs(std::string_view folded) {
    if (folded.empty()) return;
    auto before = ByteClass::ofByte[static_cast<unsigned char>(folded.front())];
    for (const char byte : folded.substr(1)) {
        const auto next = ByteClass::ofByte[static_cast<unsigned char>(byte)];
        followers_[before] |= std::uint64_t{1} << next;
        before = next;
    }
}

bool TextProfile::holds(std::string_view literal) {
    for (std::size_t i = 1; i < literal.size(); ++i) {
        const auto before = ByteClass::ofByte[static_cast<unsigned char>(literal[i - 1])];
        if ((followers_[before] & ByteClass::bitOf(literal[i])) == 0) return false;
    }
    return mayHold(folded().text(), literal) && folded().text().contains(literal);
}

bool TextProfile::meets(const Requirement& requirement) {
    switch (requirement.kind()) {
    case Requirement::Kind::none:
        return true;
    case Requirement::Kind::literal:
    case Requirement::Kind::beginning:
        return requirement.anyLiteral([this](std::string_view literal) { return holds(literal); });
    case Requirement::Kind::pair:
        for (auto rest = requirement.first_; rest != 0; rest &= rest - 1) {
            if ((followers_[static_cast<std::size_t>(std::countr_zero(rest))] & requirement.second_) != 0)
                return true;
        }
        return false;
    case Requirement::Kind::repeatedWord:
        return mayRepeatWord(folded().text());
    }
    return true;
}

} // namespace querlin
