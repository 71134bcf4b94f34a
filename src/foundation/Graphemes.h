#pragma once

#include <cstddef>
#include <iterator>
#include <string_view>

namespace querlin {

/// The characters of a text as people see them: extended grapheme clusters (UAX #29), each as a view
/// into the text.
///
///     for (const auto character : Graphemes("Bo\u0308e")) …   // "B", "o\u0308", "e"
///
/// CR LF is one character. Ill-formed bytes count as U+FFFD.
class Graphemes {
public:
    class Iterator {
    public:
        using value_type = std::string_view;
        using difference_type = std::ptrdiff_t;
        using iterator_category = std::forward_iterator_tag;
        using pointer = const std::string_view*;
        using reference = std::string_view;

        Iterator() = default;
        explicit Iterator(std::string_view rest) :
            at_(rest.data()), end_(rest.data() + rest.size()), length_(firstLength(rest)) {}
        std::string_view operator*() const { return {at_, length_}; }
        Iterator& operator++() {
            at_ += length_;
            length_ = firstLength({at_, end_});
            return *this;
        }
        Iterator operator++(int) {
            auto before = *this;
            ++*this;
            return before;
        }
        bool operator==(const Iterator& other) const { return at_ == other.at_; }

    private:
        const char* at_ = nullptr;
        const char* end_ = nullptr;
        std::size_t length_ = 0;
    };

    explicit Graphemes(std::string_view text) : text_(text) {}
    Iterator begin() const { return Iterator(text_); }
    Iterator end() const { return Iterator(text_.substr(text_.size())); }

    /// Bytes of the first character; 0 for the empty text.
    static std::size_t firstLength(std::string_view text) {
        // Below U+0300 nothing combines, apart from CR with LF: the fast path of nearly all German text.
        if (text.empty()) return 0;
        const auto byteAt = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
        if (byteAt(0) < 0x80 && byteAt(0) != '\r' && (text.size() == 1 || byteAt(1) < firstCombiningLead))
            return 1;
        const bool isLatin = byteAt(0) >= 0xC2 && byteAt(0) < firstCombiningLead && text.size() > 2 &&
                             (byteAt(1) & 0xC0U) == 0x80 && byteAt(2) < firstCombiningLead;
        return isLatin ? 2 : firstLengthBeyondLatin(text);
    }

private:
    /// Lead bytes from here on may begin a scalar that joins the one before it (U+0300 and up).
    static constexpr unsigned char firstCombiningLead = 0xCC;

    static std::size_t firstLengthBeyondLatin(std::string_view text);

    std::string_view text_;
};

/// The number of characters: "Bo\u0308e" -> 3.
std::size_t graphemeCount(std::string_view text);

/// The first `count` characters, or all of them if there are fewer: 2 of "Bo\u0308e" are "Bo\u0308".
std::string_view firstGraphemes(std::string_view text, std::size_t count);

/// The last character; empty for the empty text.
std::string_view lastGrapheme(std::string_view text);

} // namespace querlin
