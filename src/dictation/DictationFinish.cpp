// A dictation from the key's release to its end: transcript, pipeline, delivery, and what can go wrong.

#include "dictation/DictationController.h"

#include "foundation/Trimming.h"
#include "foundation/Waiting.h"
#include "state/DiagnosticsLog.h"

#include <typeinfo>

#include <fmt/format.h>

namespace querlin {

using Kind = DictationPhase::Kind;

namespace {

constexpr Duration overlayAfterDelivery = std::chrono::milliseconds(250);

} // namespace

/// When the stretches of a run ended.
struct DictationController::RunTimes {
    Instant started;
    Instant recognised;
    /// The stages before the model.
    std::optional<Instant> deterministic;
};

/// Marks a run as being finished for the length of a scope.
class DictationController::Finishing {
public:
    Finishing(DictationController& controller, DictationRun& run) : controller_(controller), run_(run) {
        controller_.finishing_.push_back(&run_);
    }
    ~Finishing() {
        std::erase(controller_.finishing_, &run_);
        run_.hold.reset();
    }
    Finishing(const Finishing&) = delete;
    Finishing& operator=(const Finishing&) = delete;

private:
    DictationController& controller_;
    DictationRun& run_;
};

Task<> DictationController::finish(RunPointer run) {
    bool isDelivered = false;
    {
        const Finishing underWay(*this, *run);
        try {
            isDelivered = co_await processAndDeliver(run);
        } catch (const std::exception& fault) {
            stageBroke(*run, fault);
        }
    }
    if (!isDelivered) co_return;
    co_await sleepFor(runtime_.mainQueue, overlayAfterDelivery);
    if (isNewest(*run) && phase_.get().is(Kind::idle)) collaborators_.windows.hideOverlay();
}

/// True if the text was delivered; otherwise all is said and done.
Task<bool> DictationController::processAndDeliver(RunPointer run) {
    RunTimes times;
    times.started = runtime_.clock.instant();
    const auto transcript = co_await transcribe(run);
    times.recognised = runtime_.clock.instant();
    if (!hasWords(*run, transcript)) co_return false;
    keepText(*run, *transcript);

    auto outcome = co_await collaborators_.pipeline.run(run->text, requestOf(*run), progressOf(run, times));
    noteOutcome(*run, outcome);
    if (outcome.discardedEverything) {
        discardOnCommand(*run);
        co_return false;
    }
    run->engineName = outcome.engineName;
    lastEngineName_.set(outcome.engineName);

    setPhase(*run, Kind::inserting);
    const auto result = co_await delivery_.deliver(run);
    if (result.kind != DeliveryResult::Kind::delivered) {
        undelivered(*run, result);
        co_return false;
    }
    lastInsertedText_.set(run->text);
    noteTimes(*run, times);
    setPhase(*run, Kind::idle);
    co_return true;
}

Task<DictationController::Transcript> DictationController::transcribe(RunPointer run) {
    const auto transcriber = run->transcriber; // Outlives a cancellation during the wait.
    if (!transcriber) {
        TranscriptionError error{TranscriptionError::Kind::failed, "Keine laufende Erkennung."};
        co_return std::unexpected(std::move(error));
    }
    auto result = co_await transcriber->finish();
    run->wasInterrupted = transcriber->wasInterrupted();
    run->transcriber.reset();
    co_return std::move(result);
}

/// Whether there is something to go on with; if not, the run ends here.
bool DictationController::hasWords(DictationRun& run, const Transcript& transcript) {
    if (!transcript) {
        recognitionFailed(run, transcript.error().description());
    } else if (!trimWhitespaceAndNewlines(*transcript).empty()) {
        return true;
    } else if (run.wasInterrupted) {
        recognitionFailed(run, "Die Spracherkennung ist ausgefallen.");
    } else {
        nothingHeard(run);
    }
    return false;
}

PipelineRequest DictationController::requestOf(const DictationRun& run) const {
    return {.style = run.style, .settings = run.settings, .now = runtime_.clock.now()};
}

PipelineProgress DictationController::progressOf(const RunPointer& run, RunTimes& times) {
    return {.onBetterText =
                [this, run, &times](const std::string& text) {
                    if (!times.deterministic) times.deterministic = runtime_.clock.instant();
                    keepText(*run, text);
                },
            .onModelBegins = [this, run] { setPhase(*run, Kind::enhancing); }};
}

/// Takes a text over as the best there is, and writes it down beside the recording.
void DictationController::keepText(DictationRun& run, std::string text) {
    run.text = std::move(text);
    if (run.recording) run.recording->keepText(run.text);
}

/// Counts for the log. What was dictated stays out of it, and so does what a user calls a text block.
void DictationController::noteOutcome(const DictationRun& run, const PipelineOutcome& outcome) {
    if (outcome.discardedEverything) {
        DiagnosticsLog::note("commands", "Diktat auf Zuruf verworfen.");
        return;
    }
    if (const auto commands = outcome.fired(TextStage::commands).size(); commands > 0)
        DiagnosticsLog::trace("commands", fmt::format("angewandt: {}", commands));
    if (const auto blocks = outcome.fired(TextStage::blocks).size(); blocks > 0)
        DiagnosticsLog::note("blocks", fmt::format("eingesetzt: {}", blocks));
    const auto mode = run.settings.cleanupMode;
    if (outcome.fallbackReason) {
        DiagnosticsLog::note("cleanup", fmt::format("{} statt {}: {}", outcome.engineName, displayName(mode),
                                                    *outcome.fallbackReason));
        collaborators_.windows.showEnhancementFailureNotice(*outcome.fallbackReason);
    } else if (usesModel(mode) && !run.style.polishEnabled) {
        DiagnosticsLog::trace("context", "Feinschliff ausgelassen: " + run.style.reason);
    }
}

void DictationController::noteTimes(const DictationRun& run, const RunTimes& times) {
    DiagnosticsLog::note(
        "timing", fmt::format("Erkennung {:.2f}s · deterministisch {:.3f}s · gesamt {:.2f}s ({}) → {} [{}]",
                              inSeconds(times.recognised - times.started),
                              inSeconds(times.deterministic.value_or(times.recognised) - times.recognised),
                              inSeconds(runtime_.clock.instant() - times.started), run.engineName,
                              run.context.summary(), run.style.reason));
}

// The other ends of a run

void DictationController::recognitionFailed(DictationRun& run, const std::string& message) {
    delivery_.rescueWhatWasHeard(run, message);
    if (isNewest(run)) fail(message);
}

void DictationController::nothingHeard(DictationRun& run) {
    DiagnosticsLog::note("pipeline", "Leeres Diktat – nichts erkannt.");
    run.discardRecording();
    if (isNewest(run)) notice("Nichts gehört");
}

void DictationController::discardOnCommand(DictationRun& run) {
    if (isNewest(run)) rest();
    run.discardRecording();
}

void DictationController::undelivered(const DictationRun& run, const DeliveryResult& result) {
    if (!isNewest(run)) return;
    if (result.kind == DeliveryResult::Kind::failed) {
        fail(result.reason);
    } else {
        rest();
    }
}

/// Not expected of any stage; the words are worth more than knowing why.
void DictationController::stageBroke(DictationRun& run, const std::exception& fault) {
    // The kind alone: a fault's own words might quote the text.
    DiagnosticsLog::note("pipeline", fmt::format("Interner Fehler: {}", typeid(fault).name()));
    constexpr std::string_view reason = "Bei der Verarbeitung trat ein interner Fehler auf";
    if (run.text.empty()) {
        recognitionFailed(run, std::string(reason));
        return;
    }
    delivery_.rescue(run, reason);
    if (isNewest(run)) rest();
}

} // namespace querlin
