#include "foundation/Requirement.h"

#include "foundation/TextCase.h"

namespace querlin {

namespace {

constexpr std::string_view longS = "\u017F";
constexpr std::string_view kelvinSign = "\u212A";
constexpr std::string_view capitalSharpS = "ẞ";

void replaceAll(std::string& text, std::string_view from, std::string_view to) {
    std::string result;
    std::size_t copied = 0;
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, copied)) {
        result.append(text, copied, at - copied).append(to);
        copied = at + from.size();
    }
    text = result.append(text, copied);
}

/// Whether two bytes stand side by side anywhere.
bool holdsPair(std::string_view text, char first, char second) {
    bool holds = false;
    for (std::size_t i = 1; i < text.size(); ++i) holds |= (text[i - 1] == first) & (text[i] == second);
    return holds;
}

/// Whether a run of letters may stand behind itself, with white space between. Knows the letters of ASCII and
/// U+00C0 to U+00FF; where there might be others, the answer is yes.
bool mayRepeatWord(std::string_view folded) {
    enum : std::uint8_t { letter, whitespace, other, unknown };
    static constexpr auto kinds = [] {
        std::array<std::uint8_t, 256> table{};
        for (unsigned byte = 0; byte < table.size(); ++byte) {
            const bool isLetter = (byte >= 'a' && byte <= 'z') || byte == 0xC3;
            const bool continuesLetter = byte >= 0x80 && byte < 0xC0; // Asked about behind 0xC3 alone.
            const bool isSpace = Bytes::asciiWhitespace.contains(static_cast<unsigned char>(byte));
            if (isLetter || continuesLetter) {
                table[byte] = letter;
            } else if (byte >= 0x80) {
                table[byte] = unknown;
            } else {
                table[byte] = isSpace ? whitespace : other;
            }
        }
        return table;
    }();
    const auto isPunctuation = [folded](std::size_t at) { // Dashes and quotes, U+2010 to U+201F.
        return at + 2 < folded.size() && folded[at] == '\xE2' && folded[at + 1] == '\x80' &&
               (static_cast<unsigned char>(folded[at + 2]) & 0xF0U) == 0x90;
    };
    std::string_view before; // The last word, as long as only white space has followed it.
    std::size_t start = 0;
    std::size_t at = 0;
    const auto repeats = [&] {
        const auto word = folded.substr(start, at - start);
        if (!word.empty() && word == before) return true;
        if (!word.empty()) before = word;
        return false;
    };
    while (at < folded.size()) {
        const auto kind = kinds[static_cast<unsigned char>(folded[at])];
        if (kind == letter) {
            ++at;
            continue;
        }
        if (kind == unknown && !isPunctuation(at)) return true;
        if (repeats()) return true;
        if (kind != whitespace) before = {};
        at += kind == unknown ? 3 : 1;
        start = at;
    }
    return repeats();
}

/// Whether the byte belongs to the character whose first byte stands before it.
bool continuesScalar(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80; }

} // namespace

void FoldedText::read(std::string_view text) {
    folded_.resize(text.size());
    lowercaseLatin1(text, folded_.data());
    if (text.contains(longS)) replaceAll(folded_, longS, "s");
    if (text.contains(kelvinSign)) replaceAll(folded_, kelvinSign, "k");
    if (text.contains(capitalSharpS)) replaceAll(folded_, capitalSharpS, "ß");
    keepsPlaces_ = folded_.size() == text.size();
}

bool Requirement::isMetBy(std::string_view text) const {
    if (kind_ == Kind::none) return true;
    thread_local FoldedText folded;
    folded.read(text);
    const auto bytes = folded.text();
    if (kind_ == Kind::repeatedWord) return mayRepeatWord(bytes);
    if (kind_ != Kind::pair) {
        return anyLiteral([bytes](std::string_view literal) {
            return holdsPair(bytes, literal[0], literal[1]) && bytes.contains(literal);
        });
    }
    for (std::size_t i = 1; i < bytes.size(); ++i) {
        const bool isFirst = first_.contains(static_cast<unsigned char>(bytes[i - 1]));
        if (isFirst && second_.contains(static_cast<unsigned char>(bytes[i]))) return true;
    }
    return false;
}

void TextProfile::read(std::string_view text) {
    text_ = text;
    folded_.read(text);
    isFolded_ = true;
    followers_ = {};
    addPairs(folded_.text());
}

void TextProfile::change(std::string_view text, std::span<const Range> written) {
    text_ = text;
    isFolded_ = false;
    for (auto [start, end] : written) {
        // With the whole characters on either side.
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
    auto before = static_cast<unsigned char>(folded.front());
    for (const char byte : folded.substr(1)) {
        const auto next = static_cast<unsigned char>(byte);
        followers_[before].add(next);
        before = next;
    }
}

bool TextProfile::holds(std::string_view literal) {
    for (std::size_t i = 1; i < literal.size(); ++i) {
        const auto& followers = followers_[static_cast<unsigned char>(literal[i - 1])];
        if (!followers.contains(static_cast<unsigned char>(literal[i]))) return false;
    }
    return folded().text().contains(literal);
}

bool TextProfile::meets(const Requirement& requirement) {
    switch (requirement.kind()) {
    case Requirement::Kind::none: return true;
    case Requirement::Kind::literal:
    case Requirement::Kind::beginning:
        return requirement.anyLiteral([this](std::string_view literal) { return holds(literal); });
    case Requirement::Kind::pair:
        return requirement.first_.anyOf(
            [&](unsigned char byte) { return followers_[byte].meets(requirement.second_); });
    case Requirement::Kind::repeatedWord: return mayRepeatWord(folded().text());
    }
    return true;
}

} // namespace querlin
