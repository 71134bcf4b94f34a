#pragma once

#include "foundation/ScalarSet.h"

#include <string>
#include <string_view>
#include <vector>

namespace querlin {

/// Removed from a word's ends for comparison: `. , ; : ! ? ( ) " ' „ “ – —`
inline constexpr ScalarSet wordPunctuation(U".,;:!?()\"'„“–—");

/// The form in which two words are compared: without punctuation at the ends, lower case, composed.
/// „BGB“. -> bgb
std::string comparedForm(std::string_view word);

/// A text cut at its white space: " Hallo,  Welt\n" -> (" ", "Hallo,"), ("  ", "Welt"), rest "\n".
/// Concatenated, the pieces are the text again; they are views into it.
class Words {
public:
    explicit Words(std::string_view text);

    std::size_t size() const { return words_.size(); }
    /// A word as written.
    std::string_view word(std::size_t index) const { return words_[index].word; }
    /// The white space before a word.
    std::string_view gap(std::size_t index) const { return words_[index].gap; }
    /// Gap and word.
    std::string_view raw(std::size_t index) const {
        const auto& [gap, word, start, length] = words_[index];
        return {gap.data(), gap.size() + word.size()};
    }
    /// A word's `comparedForm`; empty after the last word.
    std::string_view compared(std::size_t index) const {
        if (index >= words_.size()) return {};
        return std::string_view(forms_).substr(words_[index].formStart, words_[index].formLength);
    }
    /// The white space after the last word.
    std::string_view rest() const { return rest_; }

private:
    struct Entry {
        std::string_view gap;
        std::string_view word;
        std::size_t formStart = 0;
        std::size_t formLength = 0;
    };

    std::vector<Entry> words_;
    std::string_view rest_;
    /// All compared forms, or the whole text in lower case.
    std::string forms_;
};

} // namespace querlin
