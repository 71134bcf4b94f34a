#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Carries out spoken commands: "hallo Komma neue Zeile Welt" -> "Hallo,\nWelt". German words, whatever the
/// language of the recogniser.
namespace querlin::DictationCommands {

/// Running text, or one line as in a search field: nothing is capitalised, and no blank is put around
/// marks ("Müller Komma Hans" -> "Müller,Hans").
enum class Mode : std::uint8_t { prose, compact };

struct Outcome {
    std::string text;
    /// The speaker has discarded the whole dictation; `text` is empty.
    bool discardedEverything = false;
    /// The commands carried out, in order, for the log.
    std::vector<std::string> appliedCommands;

    bool operator==(const Outcome&) const = default;
};

/// Marks, line breaks, brackets and quotes; "streiche das" takes the last sentence back, "alles verwerfen"
/// everything. A word that might be a noun stays one after an article and before a verb:
/// "der Punkt ist strittig". Line breaks of the text survive, two of them at most in a row.
Outcome apply(std::string_view text, Mode mode);

} // namespace querlin::DictationCommands
