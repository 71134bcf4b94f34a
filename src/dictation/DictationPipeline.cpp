// The way of one dictation from the key release to the delivered text.

#include "dictation/DictationController.h"

#include "foundation/Waiting.h"
#include "state/DiagnosticsLog.h"
#include "textchain/Transcript.h"

#include <typeinfo>

#include <fmt/format.h>

namespace querlin {

using Kind = DictationPhase::Kind;

namespace {

constexpr Duration overlayAfterDelivery = std::chrono::milliseconds(250);
constexpr std::string_view soundOnly = "(nur Tonaufnahme – die Spracherkennung ist ausgefallen)";

std::string joined(const std::vector<std::string>& names) {
    return fmt::format("{}", fmt::join(names, ", "));
}

} // namespace

/// When the stretches of a run ended.
struct DictationController::PipelineTimes {
    Instant started;
    Instant recognised;
    Instant deterministic;
};

/// Marks a run as under way in the pipeline for the length of a scope.
class DictationController::InPipeline {
public:
    InPipeline(DictationController& controller, DictationRun& run) : controller_(controller), run_(run) {
        controller_.inPipeline_.push_back(&run_);
    }
    ~InPipeline() {
        std::erase(controller_.inPipeline_, &run_);
        run_.hold.reset();
    }
    InPipeline(const InPipeline&) = delete;
    InPipeline& operator=(const InPipeline&) = delete;

private:
    DictationController& controller_;
    DictationRun& run_;
};

Task<> DictationController::runPipeline(RunPointer run) {
    auto end = RunEnd::Undelivered;
    {
        const InPipeline underWay(*this, *run);
        try {
            end = co_await processAndDeliver(run);
        } catch (const std::exception& fault) {
            pipelineBroke(*run, fault);
        }
    }
    if (end == RunEnd::Undelivered) co_return;
    co_await sleepFor(runtime_.mainQueue, overlayAfterDelivery);
    if (isNewest(*run) && phase_.get().is(Kind::idle)) collaborators_.windows.hideOverlay();
}

Task<DictationController::RunEnd> DictationController::processAndDeliver(RunPointer run) {
    PipelineTimes times;
    times.started = runtime_.clock.instant();

    auto transcript = co_await transcribe(run);
    times.recognised = runtime_.clock.instant();
    if (!transcript) {
        recognitionFailed(*run, transcript.error().description());
        co_return RunEnd::Undelivered;
    }
    if (transcript->empty()) {
        if (run->wasInterrupted) {
            recognitionFailed(*run, "Die Spracherkennung ist ausgefallen.");
        } else {
            nothingHeard(*run);
        }
        co_return RunEnd::Undelivered;
    }
    keepText(*run, normalizedTranscript(*transcript));

    if (!applyCommands(*run)) {
        discardOnCommand(*run);
        co_return RunEnd::Undelivered;
    }
    const bool cleansByRules =
        collaborators_.settings.cleanupMode.get() != CleanupMode::none && !run->style.compactText;
    if (cleansByRules) co_await applyRules(run);
    co_await collaborators_.textStages.ready();
    applyDeterministicStages(*run);
    times.deterministic = runtime_.clock.instant();

    if (usesModel(collaborators_.settings.cleanupMode.get()) && run->style.polishEnabled) {
        co_await polish(run);
    } else {
        nameEngineWithoutModel(*run);
    }

    setPhase(*run, Kind::inserting);
    if (run->rescueReason) {
        rescue(*run, *run->rescueReason);
        co_return RunEnd::Undelivered;
    }
    const auto turn = co_await insertionTurn_.lock();
    const auto outcome = co_await collaborators_.inserter.insert(run->text);
    if (!outcome) {
        insertionFailed(*run, description(outcome.error()));
        co_return RunEnd::Undelivered;
    }
    if (*outcome == TextInserter::Outcome::notInserted) {
        rescue(*run, "Der Text kam im Zielfeld nicht an");
        co_return RunEnd::Undelivered;
    }
    if (*outcome == TextInserter::Outcome::unconfirmed) {
        DiagnosticsLog::trace("insert", "Einfügen nicht überprüfbar.");
    }
    book(*run, times);
    co_return RunEnd::Delivered;
}

// The stages

Task<std::expected<std::string, TranscriptionError>> DictationController::transcribe(RunPointer run) {
    const auto transcriber = run->transcriber; // Outlives a cancellation during the wait.
    if (!transcriber) {
        TranscriptionError error{TranscriptionError::Kind::failed, "Keine laufende Erkennung."};
        co_return std::unexpected(std::move(error));
    }
    auto result = co_await transcriber->finish();
    run->wasInterrupted = transcriber->wasInterrupted();
    run->transcriber.reset();
    co_return result;
}

/// False if the speaker has taken everything back.
bool DictationController::applyCommands(DictationRun& run) {
    if (!collaborators_.settings.dictationCommandsEnabled.get()) return true;
    using DictationCommands::Mode;
    auto outcome = collaborators_.textStages.applyCommands(run.text, run.style.compactText ? Mode::compact
                                                                                           : Mode::prose);
    if (outcome.discardedEverything) return false;
    if (!outcome.appliedCommands.empty()) {
        DiagnosticsLog::trace("commands", "angewandt: " + joined(outcome.appliedCommands));
    }
    run.text = std::move(outcome.text);
    run.treatment.commandsApplied = true;
    return true;
}

Task<> DictationController::applyRules(RunPointer run) {
    auto cleaned = co_await collaborators_.ruleBasedEnhancer.enhance(
        run->text, collaborators_.settings.language.get(), run->style.style, run->treatment);
    if (!cleaned) co_return;
    run->text = std::move(*cleaned);
    run->treatment.rulesApplied = true;
}

void DictationController::applyDeterministicStages(DictationRun& run) {
    auto& stages = collaborators_.textStages;
    auto expanded =
        stages.expandBlocks(run.text, collaborators_.settings.textBlocks.get(), runtime_.clock.now());
    if (!expanded.usedBlocks.empty()) {
        DiagnosticsLog::note("blocks", "eingesetzt: " + joined(expanded.usedBlocks));
        run.text = std::move(expanded.text);
    }
    applyLawStages(run);
    using URLFormatting::AddressTest;
    keepText(run, stages.compactAddresses(run.text, run.style.compactText ? AddressTest::lenient
                                                                          : AddressTest::strict));
}

void DictationController::applyLawStages(DictationRun& run) {
    run.text = collaborators_.textStages.processLawReferences(run.text);
    if (run.style.style == WritingStyle::aktenstil)
        run.text = collaborators_.textStages.formatLegally(run.text);
}

Task<> DictationController::polish(RunPointer run) {
    setPhase(*run, Kind::enhancing);
    auto outcome = co_await collaborators_.enhancement.run(run->text, run->style.style, run->treatment);
    run->text = std::move(outcome.text);
    applyLawStages(*run);
    nameEngine(*run, outcome.engineName);
    if (outcome.fallbackReason) {
        DiagnosticsLog::note("cleanup", fmt::format("{} statt {}: {}", outcome.engineName,
                                                    displayName(collaborators_.settings.cleanupMode.get()),
                                                    *outcome.fallbackReason));
        collaborators_.windows.showEnhancementFailureNotice(*outcome.fallbackReason);
    }
}

void DictationController::nameEngineWithoutModel(DictationRun& run) {
    const auto mode = collaborators_.settings.cleanupMode.get();
    nameEngine(run, std::string(mode == CleanupMode::none ? EngineName::raw : EngineName::rules));
    if (usesModel(mode)) DiagnosticsLog::trace("context", "Feinschliff ausgelassen: " + run.style.reason);
}

void DictationController::nameEngine(DictationRun& run, std::string name) {
    run.engineName = name;
    lastEngineName_.set(std::move(name));
}

/// Takes a text over as the best there is, and writes it down beside the recording.
void DictationController::keepText(DictationRun& run, std::string text) {
    run.text = std::move(text);
    if (run.recording) run.recording->keepText(run.text);
}

// The ends of a run

void DictationController::book(DictationRun& run, const PipelineTimes& times) {
    const auto& settings = collaborators_.settings;
    lastInsertedText_.set(run.text);
    collaborators_.statistics.record(run.text, run.recordingSeconds);
    if (settings.historyEnabled.get()) {
        const bool keepsAudio = settings.historyKeepAudio.get() && run.recording;
        collaborators_.history.record(run.text, run.context.appName, run.engineName,
                                      keepsAudio ? std::optional(run.recording->audio()) : std::nullopt);
    }
    if (settings.learnFromCorrections.get())
        collaborators_.correctionWatcher.watch(run.text, run.context.appName);
    if (run.wasInterrupted)
        collaborators_.rescue.keepIncomplete(run.text, std::exchange(run.recording, std::nullopt));
    discardRecording(run);
    DiagnosticsLog::note(
        "timing", fmt::format("Erkennung {:.2f}s · deterministisch {:.3f}s · gesamt {:.2f}s ({}) → {} [{}]",
                              inSeconds(times.recognised - times.started),
                              inSeconds(times.deterministic - times.recognised),
                              inSeconds(runtime_.clock.instant() - times.started), run.engineName,
                              run.context.summary(), run.style.reason));
    play(FeedbackSound::success);
    setPhase(run, Kind::idle);
}

void DictationController::recognitionFailed(DictationRun& run, const std::string& message) {
    // No transcript, but words there were, or sound that nobody has listened to.
    if (!run.isCancelled && (!run.partialText.empty() || run.wasInterrupted)) {
        collaborators_.rescue.rescue(run.partialText.empty() ? soundOnly : run.partialText,
                                     std::exchange(run.recording, std::nullopt), message);
    }
    discardRecording(run);
    if (isNewest(run)) fail(message);
}

void DictationController::nothingHeard(DictationRun& run) {
    DiagnosticsLog::note("pipeline", "Leeres Diktat – nichts erkannt.");
    discardRecording(run);
    if (isNewest(run)) notice("Nichts gehört");
}

void DictationController::discardOnCommand(DictationRun& run) {
    DiagnosticsLog::note("commands", "Diktat auf Zuruf verworfen.");
    if (isNewest(run)) rest();
    discardRecording(run);
}

void DictationController::rescue(DictationRun& run, std::string_view reason) {
    collaborators_.rescue.rescue(run.text, std::exchange(run.recording, std::nullopt), reason);
    play(FeedbackSound::failure);
    if (isNewest(run)) rest();
}

void DictationController::insertionFailed(DictationRun& run, std::string_view reason) {
    if (!run.text.empty()) {
        rescue(run, reason);
        return;
    }
    discardRecording(run);
    if (isNewest(run)) fail(std::string(reason));
}

/// Not expected of any stage; the words are worth more than knowing why.
void DictationController::pipelineBroke(DictationRun& run, const std::exception& fault) {
    // The kind alone: a fault's own words might quote the text.
    DiagnosticsLog::note("pipeline", fmt::format("Interner Fehler: {}", typeid(fault).name()));
    constexpr std::string_view reason = "Bei der Verarbeitung trat ein interner Fehler auf";
    if (run.text.empty()) {
        recognitionFailed(run, std::string(reason));
    } else {
        rescue(run, reason);
    }
}

void DictationController::discardRecording(DictationRun& run) {
    if (run.recording) run.recording->discard();
    run.recording.reset();
}

} // namespace querlin
