#pragma once

#include "cleanup/TextEnhancer.h"
#include "foundation/Runtime.h"

#include <string_view>

namespace querlin {

/// Cleans a transcript by fixed German rules, the same for every language and style: hesitations, fillers
/// and stuttered words go, spoken corrections are resolved, punctuation is repaired, sentences begin with a
/// capital and end with a mark. "ähm um fünf, nein, um sechs" -> "Um sechs."
class RuleBasedEnhancer final : public TextEnhancer {
public:
    explicit RuleBasedEnhancer(Runtime runtime) : runtime_(runtime) {}

    /// `clean`, in the background. Never fails.
    Task<std::expected<std::string, EnhancementError>> enhance(std::string text, DictationLanguage language,
                                                               WritingStyle style,
                                                               TextTreatment treatment) override;

    /// What `enhance` does. Any thread. Text that has been through the spoken commands keeps its "Komma"
    /// and "Punkt": what they left are nouns.
    static std::string clean(std::string_view text, TextTreatment treatment);

private:
    Runtime runtime_;
};

} // namespace querlin
