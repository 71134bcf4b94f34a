#include "cleanup/EnhancementCoordinator.h"

#include "foundation/Trimming.h"
#include "state/DiagnosticsLog.h"
#include "textchain/DictationPreprocessor.h"

namespace querlin {

namespace {

EnhancementOutcome madeBy(std::string_view engine, std::string text, std::optional<std::string> reason = {}) {
    return {std::move(text), std::string(engine), std::move(reason)};
}

} // namespace

Task<EnhancementOutcome> EnhancementCoordinator::run(std::string transcript,
                                                     std::optional<WritingStyle> style,
                                                     TextTreatment treatment) {
    std::string text(trimWhitespaceAndNewlines(transcript));
    const auto mode = settings_.cleanupMode.get();
    if (text.empty() || mode == CleanupMode::none) co_return madeBy(EngineName::raw, std::move(text));
    if (mode == CleanupMode::rules) co_return madeBy(EngineName::rules, std::move(text));
    // Once the commands or the rules have been through the text, "Punkt" is a noun, or part of a law.
    if (!treatment.commandsApplied && !treatment.rulesApplied) {
        text = DictationPreprocessor::applySpokenPunctuation(text);
    }
    co_return co_await runLocal(std::move(text), style.value_or(settings_.writingStyle.get()), treatment);
}

Task<EnhancementOutcome> EnhancementCoordinator::runLocal(std::string text, WritingStyle style,
                                                          TextTreatment treatment) {
    const auto availability = model_.availability();
    if (!availability.isAvailable()) {
        co_return co_await runRuleBased(std::move(text), style, treatment, availability.explanation());
    }
    auto polished = co_await model_.enhance(text, settings_.language.get(), style, treatment);
    if (polished)
        co_return madeBy(EngineName::model, polished->empty() ? std::move(text) : std::move(*polished));
    const auto& fault = polished.error().description;
    DiagnosticsLog::note("cleanup", "Lokales Modell fehlgeschlagen: " + fault);
    co_return co_await runRuleBased(std::move(text), style, treatment, "Lokales Modell meldete: " + fault);
}

Task<EnhancementOutcome> EnhancementCoordinator::runRuleBased(std::string text, WritingStyle style,
                                                              TextTreatment treatment, std::string reason) {
    // A second pass would alter law texts and blocks put in since the first.
    if (treatment.rulesApplied)
        co_return madeBy(EngineName::rulesInstead, std::move(text), std::move(reason));
    auto cleaned = co_await rules_.enhance(text, settings_.language.get(), style, treatment);
    if (!cleaned) co_return madeBy(EngineName::raw, std::move(text), cleaned.error().description);
    if (!cleaned->empty()) text = std::move(*cleaned);
    co_return madeBy(EngineName::rulesInstead, std::move(text), std::move(reason));
}

std::string EnhancementCoordinator::effectiveDescription(CleanupMode mode,
                                                         const LocalModelAvailability& availability) {
    switch (mode) {
    case CleanupMode::rules:
        return "Regelbasiert, ohne Modell. Der Text steht sofort nach dem Loslassen – keine Wartezeit.";
    case CleanupMode::none:
        return "Keine Bereinigung – das Transkript wird unverändert eingefügt.";
    case CleanupMode::local:
        break;
    }
    if (availability.isAvailable()) return "Apples lokales Modell – auf diesem Mac gerechnet.";
    return availability.explanation() + " Es wird regelbasiert bereinigt.";
}

} // namespace querlin
