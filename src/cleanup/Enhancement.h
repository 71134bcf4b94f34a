#pragma once

#include "foundation/Task.h"
#include "state/RecognitionChoice.h"
#include "state/WritingStyle.h"

#include <expected>
#include <optional>
#include <string>

namespace querlin {

/// What has been done to a text already in the same run, so that nothing is done twice: words that the
/// command stage guarded stay words, and inserted law text isn't cleaned like speech.
struct TextTreatment {
    bool commandsApplied = false;
    bool rulesApplied = false;

    bool operator==(const TextTreatment&) const = default;
};

/// Why an enhancer gave no text; the text is German.
struct EnhancementError {
    std::string description;
};

/// Cleans a transcript. The work is done in the background; the task is awaited on the main thread.
class TextEnhancer {
public:
    virtual ~TextEnhancer() = default;
    virtual Task<std::expected<std::string, EnhancementError>>
    enhance(std::string text, DictationLanguage language, WritingStyle style, TextTreatment treatment) = 0;
};

/// The finished text, and who made it.
struct EnhancementOutcome {
    std::string text;
    /// "Roh", "Regelbasiert", … ; shown in the menu and kept with the history entry.
    std::string engineName;
    /// Only when the model was wanted and another way was taken.
    std::optional<std::string> fallbackReason;

    bool operator==(const EnhancementOutcome&) const = default;
};

/// Finishes a text according to the cleanup mode; never fails, whatever the model does.
class EnhancementCoordinator {
public:
    virtual ~EnhancementCoordinator() = default;
    virtual Task<EnhancementOutcome> run(std::string text, WritingStyle style, TextTreatment treatment) = 0;
};

} // namespace querlin
