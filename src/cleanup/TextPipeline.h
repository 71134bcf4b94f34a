#pragma once

#include "cleanup/EffectiveStyle.h"
#include "cleanup/EnhancementCoordinator.h"
#include "cleanup/PipelineSettings.h"
#include "foundation/Runtime.h"

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace querlin {

class LegalLookup;

/// What is done to a text between the recogniser and the target, in this order.
enum class TextStage : std::uint8_t {
    commands,        ///< spoken punctuation, line breaks, corrections: "hallo Komma Welt" -> "Hallo, Welt"
    rules,           ///< hesitations, fillers, corrections, sentences
    blocks,          ///< "Baustein Grußformel" -> the block's content
    lawInsertion,    ///< the wording of laws where the speaker asks for it
    citations,       ///< "Paragraf 5 BGB" -> "§ 5 BGB", within inserted wording too
    legalFormatting, ///< dates and file numbers: "3. März 2024" -> "03.03.2024"
    addresses,       ///< "Www. Beispiel. De" -> "www.beispiel.de"
    model            ///< the language model; its text goes through the three legal stages once more
};

/// Some of the stages.
class StageSet {
public:
    constexpr StageSet(std::initializer_list<TextStage> stages) {
        for (const auto stage : stages) bits_ |= bit(stage);
    }
    static constexpr StageSet all() {
        StageSet set{};
        set.bits_ = ~0U;
        return set;
    }
    constexpr bool contains(TextStage stage) const { return (bits_ & bit(stage)) != 0; }

private:
    static constexpr unsigned bit(TextStage stage) { return 1U << static_cast<unsigned>(stage); }

    unsigned bits_ = 0;
};

/// What decides which stages run, and how.
struct PipelineRequest {
    EffectiveStyle style;
    PipelineSettings settings;
    /// For the placeholders of text blocks.
    Date now;
    /// Stages that the style and the settings call for but that are not in here are left out.
    StageSet stages = StageSet::all();
};

/// What one stage did.
struct StageTrace {
    TextStage stage{};
    std::string before;
    std::string after;
    /// The commands that were obeyed, the blocks that were put in, the engine in place of the model's stage.
    std::vector<std::string> fired;
};

/// What became of a transcript.
struct PipelineOutcome {
    std::string text;
    /// One of `EngineName`.
    std::string engineName;
    /// The speaker has taken everything back; no stage ran after the commands.
    bool discardedEverything = false;
    /// Only when the model was wanted and another way was taken; German.
    std::optional<std::string> fallbackReason;
    /// All stages that ran, in their order. It holds what was dictated and belongs into no log.
    std::vector<StageTrace> trace;
    TextTreatment treatment;

    /// What a stage reports at its first run; empty if it hasn't run.
    std::vector<std::string> fired(TextStage stage) const;
};

/// What a caller can follow while a text is on its way. Main thread.
struct PipelineProgress {
    /// There is a better text than before, worth keeping in case the process ends.
    std::function<void(const std::string& text)> onBetterText = [](const std::string&) {};
    /// The model has the text from here on.
    std::function<void()> onModelBegins = [] {};
};

/// The way of a text from the recogniser to the target: all stages, in their one order. Nothing here touches
/// a dictation's phase, its target or its files. Main thread, except where stated.
class TextPipeline {
public:
    /// `runtime.background` is where the stages run.
    TextPipeline(Runtime runtime, LegalLookup& laws, EnhancementCoordinator& enhancement) :
        runtime_(runtime), laws_(laws), enhancement_(enhancement) {}

    /// The main thread never computes and never waits here. An exception of a stage comes out of the wait.
    Task<PipelineOutcome> run(std::string transcript, PipelineRequest request,
                              PipelineProgress progress = {}) const;

    /// All stages but the model, here and now. Any thread.
    static PipelineOutcome runWithoutModel(std::string_view transcript, const PipelineRequest& request,
                                           LegalLookup& laws);

private:
    Runtime runtime_;
    LegalLookup& laws_;
    EnhancementCoordinator& enhancement_;
};

} // namespace querlin
