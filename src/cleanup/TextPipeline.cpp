#include "cleanup/TextPipeline.h"

#include "cleanup/RuleBasedEnhancer.h"
#include "foundation/Waiting.h"
#include "legal/LegalLookup.h"
#include "textchain/DictationCommands.h"
#include "textchain/LawInsertion.h"
#include "textchain/LegalFormatting.h"
#include "textchain/SpokenLawReference.h"
#include "textchain/TextBlockExpander.h"
#include "textchain/Transcript.h"
#include "textchain/URLFormatting.h"

#include <algorithm>

namespace querlin {

namespace {

std::string withCompactAddresses(std::string_view text, bool isCompact) {
    using namespace URLFormatting;
    const auto test = isCompact ? AddressTest::lenient : AddressTest::strict;
    return looksLikeAddress(text, test) ? compactWholeText(text) : compactURLs(text);
}

/// Takes a text from stage to stage and notes what each has made of it.
class Passage {
public:
    Passage(const PipelineRequest& request, LegalLookup& laws, PipelineOutcome outcome) :
        request_(request), laws_(laws), outcome_(std::move(outcome)) {}

    PipelineOutcome runWithoutModel() {
        const auto& settings = request_.settings;
        const bool isCompact = request_.style.compactText;
        const bool cleans = settings.cleanupMode != CleanupMode::none && !isCompact;

        if (settings.commandsEnabled && !applyCommands()) return std::move(outcome_);
        if (cleans) applyRules();
        expandBlocks();
        applyLegalStages();
        pass(TextStage::addresses,
             [isCompact](std::string_view text) { return withCompactAddresses(text, isCompact); });
        outcome_.engineName = settings.cleanupMode == CleanupMode::none ? EngineName::raw : EngineName::rules;
        return std::move(outcome_);
    }

    PipelineOutcome runAfterModel(EnhancementOutcome polished) {
        note(TextStage::model, std::move(polished.text), {polished.engineName});
        outcome_.engineName = std::move(polished.engineName);
        outcome_.fallbackReason = std::move(polished.fallbackReason);
        applyLegalStages();
        return std::move(outcome_);
    }

private:
    bool isWanted(TextStage stage) const { return request_.stages.contains(stage); }

    template<class Work>
    void pass(TextStage stage, Work work) {
        if (isWanted(stage)) note(stage, work(outcome_.text));
    }

    void note(TextStage stage, std::string after, std::vector<std::string> fired = {}) {
        outcome_.trace.push_back({stage, std::exchange(outcome_.text, after), after, std::move(fired)});
    }

    /// False if the speaker has taken everything back.
    bool applyCommands() {
        if (!isWanted(TextStage::commands)) return true;
        using DictationCommands::Mode;
        auto spoken =
            DictationCommands::apply(outcome_.text, request_.style.compactText ? Mode::compact : Mode::prose);
        note(TextStage::commands, std::move(spoken.text), std::move(spoken.appliedCommands));
        outcome_.treatment.commandsApplied = true;
        outcome_.discardedEverything = spoken.discardedEverything;
        return !spoken.discardedEverything;
    }

    void applyRules() {
        if (!isWanted(TextStage::rules)) return;
        note(TextStage::rules, RuleBasedEnhancer::clean(outcome_.text, outcome_.treatment));
        outcome_.treatment.rulesApplied = true;
    }

    void expandBlocks() {
        if (!isWanted(TextStage::blocks)) return;
        auto expanded = TextBlockExpander::expand(outcome_.text, request_.settings.textBlocks, request_.now);
        const bool hasBlocks = !expanded.usedBlocks.empty();
        note(TextStage::blocks, hasBlocks ? std::move(expanded.text) : outcome_.text,
             std::move(expanded.usedBlocks));
    }

    void applyLegalStages() {
        pass(TextStage::lawInsertion,
             [this](std::string_view text) { return SpokenLawReference::applyInsertCommands(text, laws_); });
        pass(TextStage::citations, SpokenLawReference::normalizeReferences);
        if (request_.style.style == WritingStyle::aktenstil)
            pass(TextStage::legalFormatting, LegalFormatting::apply);
    }

    const PipelineRequest& request_;
    LegalLookup& laws_;
    PipelineOutcome outcome_;
};

} // namespace

std::vector<std::string> PipelineOutcome::fired(TextStage stage) const {
    const auto found = std::ranges::find(trace, stage, &StageTrace::stage);
    return found == trace.end() ? std::vector<std::string>() : found->fired;
}

PipelineOutcome TextPipeline::runWithoutModel(std::string_view transcript, const PipelineRequest& request,
                                              LegalLookup& laws) {
    PipelineOutcome outcome;
    outcome.text = normalizedTranscript(transcript);
    return Passage(request, laws, std::move(outcome)).runWithoutModel();
}

Task<PipelineOutcome> TextPipeline::run(std::string transcript, PipelineRequest request,
                                        PipelineProgress progress) const {
    auto stages = [&laws = laws_, transcript = std::move(transcript), request] {
        return runWithoutModel(transcript, request, laws);
    };
    co_await laws_.ready();
    auto outcome = co_await background(runtime_, std::move(stages));
    if (outcome.discardedEverything) co_return std::move(outcome);
    progress.onBetterText(outcome.text);
    const bool wantsModel = usesModel(request.settings.cleanupMode) && request.style.polishEnabled &&
                            request.stages.contains(TextStage::model);
    if (!wantsModel) co_return std::move(outcome);

    progress.onModelBegins();
    auto polished = co_await enhancement_.run(outcome.text, request.style.style, outcome.treatment);
    auto secondPass = [&laws = laws_, request, outcome = std::move(outcome),
                       polished = std::move(polished)]() mutable {
        return Passage(request, laws, std::move(outcome)).runAfterModel(std::move(polished));
    };
    outcome = co_await background(runtime_, std::move(secondPass));
    progress.onBetterText(outcome.text);
    co_return std::move(outcome);
}

} // namespace querlin
