#pragma once

#include "foundation/Files.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace querlin {

/// How German words are spoken, in the phones of a model: espeak-ng says it in the International Phonetic
/// Alphabet, and the model's `phonemap.tsv` has a row for each of its sounds. "Akte" -> "A2 K T AX".
class Pronunciations {
public:
    /// Without a readable map there are no pronunciations.
    explicit Pronunciations(const std::filesystem::path& phoneMap);

    /// Asks for words that haven't been asked for yet, all in one call; false if espeak-ng didn't answer.
    bool learn(const std::vector<std::string>& words);
    /// Empty if it isn't known.
    std::string_view of(const std::string& word) const;

    /// The phones of one line of espeak-ng, its sounds separated by "_"; empty if a sound has none.
    std::string phones(std::string_view line) const;

private:
    void ask(std::vector<std::string> words);
    /// Adds the phones of one sound; false if there are none.
    bool add(std::string& phones, std::string_view sound) const;

    std::map<std::string, std::string, std::less<>> phoneOfSound_;
    std::map<std::string, std::string, std::less<>> known_; ///< empty for a word that can't be spoken
    bool hasAnswered_ = true;
    Instant deadline_; ///< of the calls of one list
};

} // namespace querlin
