#pragma once

#include "foundation/Task.h"
#include "state/RecognitionChoice.h"
#include "state/WritingStyle.h"

#include <expected>
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

} // namespace querlin
