#include "cleanup/EnhancementCoordinator.h"

#include "cleanup/RuleBasedEnhancer.h"
#include "foundation/Trimming.h"
#include "foundation/Waiting.h"
#include "state/DiagnosticsLog.h"
#include "textchain/DictationPreprocessor.h"

namespace querlin {

namespace {

EnhancementOutcome madeBy(std::string_view engine, std::string text, std::optional<std::string> reason = {}) {
    return {std::move(text), std::string(engine), std::move(reason)};
}

} // namespace

Task<EnhancementOutcome> EnhancementCoordinator::run(std::string transcript, WritingStyle style,
                                                     TextTreatment treatment) {
    std::string text(trimWhitespaceAndNewlines(transcript));
    if (text.empty()) co_return madeBy(EngineName::raw, std::move(text));
    // Once the commands or the rules have been through the text, "Punkt" is a noun, or part of a law.
    if (!treatment.commandsApplied && !treatment.rulesApplied)
        text = DictationPreprocessor::applySpokenPunctuation(text);
    if (const auto state = model_.availability(); state != LocalModelAvailability::available) {
        std::string reason(explanation(state));
        co_return co_await runRuleBased(std::move(text), treatment, std::move(reason));
    }
    auto polished = co_await model_.enhance(text, style);
    if (polished)
        co_return madeBy(EngineName::model, polished->empty() ? std::move(text) : std::move(*polished));
    const auto& fault = polished.error().description;
    DiagnosticsLog::note("cleanup", "Lokales Modell fehlgeschlagen: " + fault);
    co_return co_await runRuleBased(std::move(text), treatment, "Lokales Modell meldete: " + fault);
}

Task<EnhancementOutcome> EnhancementCoordinator::runRuleBased(std::string text, TextTreatment treatment,
                                                              std::string reason) {
    // A second pass would alter law texts and blocks put in since the first.
    if (!treatment.rulesApplied) {
        auto work = [text, treatment] { return RuleBasedEnhancer::clean(text, treatment); };
        auto cleaned = co_await background(runtime_, std::move(work));
        if (!cleaned.empty()) text = std::move(cleaned);
    }
    co_return madeBy(EngineName::rulesInstead, std::move(text), std::move(reason));
}

std::string EnhancementCoordinator::effectiveDescription(CleanupMode mode,
                                                         LocalModelAvailability availability) {
    switch (mode) {
    case CleanupMode::rules:
        return "Regelbasiert, ohne Modell. Der Text steht sofort nach dem Loslassen – keine Wartezeit.";
    case CleanupMode::none:
        return "Keine Bereinigung – das Transkript wird unverändert eingefügt.";
    case CleanupMode::local:
        break;
    }
    if (availability == LocalModelAvailability::available)
        return "Lokales Modell – auf diesem Rechner gerechnet.";
    return std::string(explanation(availability)) + " Es wird regelbasiert bereinigt.";
}

} // namespace querlin
