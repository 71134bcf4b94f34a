#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace querlin {

/// One word that the user has put in place of one to three that were recognised.
struct Correction {
    std::vector<std::string> recognizedWords;
    std::string corrected;

    /// The replaced words, with blanks between them.
    std::string recognized() const;

    bool operator==(const Correction&) const = default;
};

/// The words of a text without the punctuation around them: „BGB“, gilt. -> "BGB", "gilt".
std::vector<std::string> wordsOf(std::string_view text);

/// The correction that makes one text out of another: "Herr Meier kommt" and "Herr Mayer kommt" ->
/// "Meier" became "Mayer". Nothing where more than one place changed, where a word was added or parted,
/// and where only case or punctuation changed.
std::optional<Correction> singleChange(std::string_view from, std::string_view to);

} // namespace querlin
