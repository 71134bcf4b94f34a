#pragma once

#include "cleanup/LocalModelEnhancer.h"
#include "state/AppSettings.h"

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
/// The rules, which the pipeline has run.
inline constexpr std::string_view rules = "Regelbasiert";
/// The rules in place of the model.
inline constexpr std::string_view rulesInstead = "Regelbasiert (offline)";
inline constexpr std::string_view model = "Lokal (Apple)";
} // namespace EngineName

/// Finishes a text according to the cleanup mode. There always is an outcome: whatever the model does, the
/// words come back. What the rules have been through in the same run they don't go through again. Main
/// thread; all it is given outlives it.
class EnhancementCoordinator {
public:
    EnhancementCoordinator(const AppSettings& settings, TextEnhancer& rules, LocalModelEnhancer& model) :
        settings_(settings), rules_(rules), model_(model) {}

    /// Without a style the general setting counts.
    Task<EnhancementOutcome> run(std::string transcript, std::optional<WritingStyle> style,
                                 TextTreatment treatment);

    /// What happens to texts in this mode, for the settings window.
    static std::string effectiveDescription(CleanupMode mode, const LocalModelAvailability& availability);

private:
    Task<EnhancementOutcome> runLocal(std::string text, WritingStyle style, TextTreatment treatment);
    Task<EnhancementOutcome> runRuleBased(std::string text, WritingStyle style, TextTreatment treatment,
                                          std::string reason);

    const AppSettings& settings_;
    TextEnhancer& rules_;
    LocalModelEnhancer& model_;
};

} // namespace querlin
