#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace querlin {

/// What the program is doing at this moment, for every surface that shows it.
struct DictationPhase {
    enum class Kind : std::uint8_t {
        idle,         ///< nothing runs; a key press starts a dictation
        recording,    ///< the microphone is open
        transcribing, ///< the key is up; the final transcript and the text stages
        enhancing,    ///< the language model polishes
        inserting,    ///< the text goes to the target, or into safety
        notice,       ///< a passing remark
        error         ///< a failure; like the notice it goes by itself
    };

    Kind kind = Kind::idle;
    /// Of a notice or an error; empty otherwise.
    std::string text;

    static DictationPhase notice(std::string text) { return {Kind::notice, std::move(text)}; }
    static DictationPhase error(std::string text) { return {Kind::error, std::move(text)}; }

    bool is(Kind other) const { return kind == other; }
    bool isBusy() const;
    /// The German label for the user and the log.
    std::string_view statusText() const;
    /// The name of the symbol that stands for it.
    std::string_view symbolName() const;

    bool operator==(const DictationPhase&) const = default;
};

} // namespace querlin
