#pragma once

#include "cleanup/LocalModelEnhancer.h"
#include "cleanup/TextTreatment.h"
#include "foundation/Runtime.h"

#include <optional>
#include <string>

namespace querlin {

/// The finished text, and who made it.
struct EnhancementOutcome {
    std::string text;
    /// Shown in the menu and kept with the history entry; one of `EngineName`.
    std::string engineName;
    /// Only when the model was wanted and another way was taken; German.
    std::optional<std::string> fallbackReason;

    bool operator==(const EnhancementOutcome&) const = default;
};

namespace EngineName {
inline constexpr std::string_view raw = "Roh";
inline constexpr std::string_view rules = "Regelbasiert";
/// The rules in place of the model.
inline constexpr std::string_view rulesInstead = "Regelbasiert (offline)";
inline constexpr std::string_view model = "Lokal (Modell)";
} // namespace EngineName

/// Has a text polished by the language model. There always is an outcome: whatever the model does, the words
/// come back, then by the rules. What the rules have been through in the same run they don't go through
/// again. Main thread; all it is given outlives it.
class EnhancementCoordinator {
public:
    EnhancementCoordinator(Runtime runtime, LocalModelEnhancer& model) : runtime_(runtime), model_(model) {}

    Task<EnhancementOutcome> run(std::string transcript, WritingStyle style, TextTreatment treatment);

    /// What happens to texts in this mode, for the settings window.
    static std::string effectiveDescription(CleanupMode mode, LocalModelAvailability availability);

private:
    Task<EnhancementOutcome> runRuleBased(std::string text, TextTreatment treatment, std::string reason);

    Runtime runtime_;
    LocalModelEnhancer& model_;
};

} // namespace querlin
