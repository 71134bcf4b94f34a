#pragma once

namespace querlin {

/// What has been done to a text already in the same run, so that nothing is done twice: words that the
/// command stage guarded stay words, and inserted law text isn't cleaned like speech.
struct TextTreatment {
    bool commandsApplied = false;
    bool rulesApplied = false;

    bool operator==(const TextTreatment&) const = default;
};

} // namespace querlin
