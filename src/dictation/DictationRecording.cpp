// A dictation from the press of the key to its release, and what the user sees of it.

#include "dictation/DictationController.h"

#include "state/DiagnosticsLog.h"

#include <algorithm>

#include <fmt/format.h>

namespace querlin {

using Kind = DictationPhase::Kind;

namespace {

constexpr Duration errorShown = std::chrono::milliseconds(2200);
constexpr Duration noticeShown = std::chrono::milliseconds(1600);
constexpr Duration elapsedInterval = std::chrono::milliseconds(500);

/// By then most shortcuts have shown themselves. Where other keys can't be seen, a short press of the key is
/// the only sign of one.
constexpr Duration shownAfterPress = std::chrono::milliseconds(150);
constexpr Duration shownAfterBlindPress = std::chrono::milliseconds(300);

} // namespace

// The beginning

void DictationController::beginDictation() { begin(BegunBy::Menu); }

void DictationController::begin(BegunBy who) {
    if (isShutDown_ || !isIdle()) return;
    const auto run = newest_ = std::make_shared<DictationRun>();
    run->isHeldByKey = who == BegunBy::HoldKey;

    const auto recorded = record(run);
    auto show = [this, run, recorded] {
        if (recorded) {
            showRecording(*run);
        } else {
            showRefusal(recorded.error());
        }
    };
    if (who == BegunBy::Menu) {
        showing_.reset();
        show();
        return;
    }
    const auto delay = collaborators_.hotkey.tellsOtherKeys() ? shownAfterPress : shownAfterBlindPress;
    showing_ = runtime_.mainQueue.after(delay, std::move(show));
}

/// Opens the microphone for the run, unless something speaks against it. Nothing is shown yet.
std::expected<void, DictationController::Refusal> DictationController::record(const RunPointer& run) {
    if (auto permitted = checkPermissions(); !permitted) return permitted;
    livePartialText_.set("");
    inputLevel_.set(0);
    run->settings = PipelineSettings::of(collaborators_.settings);
    lookAtTarget(*run);
    if (run->context.field == DictationContext::FieldKind::secure)
        return std::unexpected(Refusal{"Passwortfeld – hier wird nicht eingefügt"});
    if (auto listening = listen(run); !listening) {
        cancelRecognition();
        collaborators_.recorder.setOnBuffer({});
        return std::unexpected(Refusal{std::move(listening.error())});
    }
    recording_ = run;
    startElapsedTimer();
    return {};
}

std::expected<void, DictationController::Refusal> DictationController::checkPermissions() const {
    auto& permissions = collaborators_.permissions;
    if (!isGranted(permissions.microphoneState()))
        return std::unexpected(Refusal{"Mikrofon-Zugriff fehlt", true});
    if (collaborators_.settings.engine.get() == TranscriptionEngine::classic &&
        !isGranted(permissions.speechState()))
        return std::unexpected(Refusal{"Spracherkennung nicht erlaubt", true});
    return {};
}

/// Takes down where the text is to go and how it is to read.
void DictationController::lookAtTarget(DictationRun& run) {
    const auto& settings = collaborators_.settings;
    std::span<const AppProfile> profiles;
    if (settings.contextAwareStyle.get()) {
        run.context = collaborators_.contextDetector.capture();
        profiles = settings.appProfiles.get();
    }
    run.style = EffectiveStyle::resolve(run.context, profiles, settings.writingStyle.get(), true);
    context_.set(run.context);
    effectiveStyle_.set(run.style);
}

std::expected<void, std::string> DictationController::listen(const RunPointer& run) {
    auto& settings = collaborators_.settings;
    const auto transcriber = makeTranscriber(run);
    if (const auto begun = transcriber->begin(collaborators_.transcribers.locale(settings.language.get()));
        !begun) {
        return std::unexpected(begun.error().description());
    }
    run->transcriber = transcriber;
    collaborators_.recorder.setOnBuffer([weak = std::weak_ptr(transcriber)](const AudioBuffer& buffer) {
        if (const auto alive = weak.lock()) alive->append(buffer);
    });
    if (const auto started = collaborators_.recorder.start(WriteToDisk::Yes); !started) {
        return std::unexpected(started.error().description());
    }
    return {};
}

std::shared_ptr<StreamingTranscriber> DictationController::makeTranscriber(const RunPointer& run) {
    auto engine = collaborators_.settings.engine.get();
    if (engine == TranscriptionEngine::streaming && !collaborators_.transcribers.hasStreaming()) {
        DiagnosticsLog::note("speech", "Streaming-Erkenner nicht verfügbar – nutze den klassischen.");
        engine = TranscriptionEngine::classic;
    }
    auto transcriber = collaborators_.transcribers.make(engine);
    transcriber->setOnPartialResult(
        lifetime_.onMain(runtime_.mainQueue, [this, weak = std::weak_ptr(run)](std::string text) {
            if (const auto alive = weak.lock()) partialResult(alive, std::move(text));
        }));
    transcriber->setContextualStrings(contextualStrings());
    return transcriber;
}

std::vector<std::string> DictationController::contextualStrings() const {
    const auto& settings = collaborators_.settings;
    const auto limit = settings.contextualLimit.get();
    auto terms = settings.userDictionary.get();
    if (settings.legalVocabularyEnabled.get())
        return collaborators_.vocabulary.contextualStrings(terms, limit);
    if (limit < std::ssize(terms)) terms.resize(static_cast<std::size_t>(std::max(limit, std::int64_t{0})));
    return terms;
}

void DictationController::partialResult(const RunPointer& run, std::string text) {
    run->partialText = text;
    if (!isNewest(*run)) return;
    livePartialText_.set(text);
    if (run == recording_) partialTextKeeper_.update(std::move(text));
}

void DictationController::startElapsedTimer() {
    elapsedDescription_.set("0:00");
    isLongDictation_.set(false);
    elapsedTimer_.emplace(runtime_.mainQueue, elapsedInterval, [this] { elapsedTick(); });
}

void DictationController::elapsedTick() {
    const double duration = collaborators_.recorder.duration();
    const auto seconds = static_cast<std::int64_t>(duration);
    elapsedDescription_.set(fmt::format("{}:{:02}", seconds / 60, seconds % 60));
    if (!isLongDictation_.get() && duration >= AppSettings::longDictationWarning) {
        isLongDictation_.set(true);
        DiagnosticsLog::note("audio", "Diktat läuft länger als fünf Minuten.");
    }
    const auto limit = collaborators_.settings.maxDictationMinutes.get();
    if (limit >= 1 && duration >= static_cast<double>(limit) * 60) {
        DiagnosticsLog::note("audio",
                             fmt::format("Obergrenze von {} Minuten erreicht – Diktat wird beendet.", limit));
        endDictation();
    }
}

// The end

void DictationController::endDictation() {
    showing_.reset(); // A key that is up again so soon is answered with nothing.
    const auto run = recording_;
    if (!run) return;
    run->recordingSeconds = collaborators_.recorder.duration();
    closeMicrophone();
    if (run->recordingSeconds < minimumRecordingSeconds) {
        forgetRecording(*run);
        return;
    }
    partialTextKeeper_.finish();
    run->recording = collaborators_.recorder.detachRecording();
    enter({Kind::transcribing, {}});
    if (!run->isShown) collaborators_.windows.showOverlay();
    tasks_.start(finish(run));
}

/// The key was part of a shortcut: there has been no dictation.
void DictationController::abandonDictation() {
    showing_.reset();
    const auto run = recording_;
    if (!run || !run->isHeldByKey) return;
    closeMicrophone();
    forgetRecording(*run);
}

void DictationController::toggleDictation() {
    DiagnosticsLog::note("menu", fmt::format("Aufnahme umschalten, Phase={}", phase_.get().statusText()));
    if (recording_) {
        endDictation();
    } else {
        beginDictation();
    }
}

void DictationController::cancelDictation() {
    const auto run = newest_;
    showing_.reset();
    run->isCancelled = true;
    run->rescueReason.reset();
    closeMicrophone();
    forgetRecording(*run);
    run->discardRecording();
    rest();
}

void DictationController::closeMicrophone() {
    recording_.reset();
    elapsedTimer_.reset();
    collaborators_.recorder.stop();
    collaborators_.recorder.setOnBuffer({});
    inputLevel_.set(0);
}

/// Leaves nothing of a recording that doesn't count.
void DictationController::forgetRecording(DictationRun& run) {
    partialTextKeeper_.drop();
    cancelRecognition();
    run.hold.reset();
    collaborators_.recorder.discardRecording();
    // A message that was there before and that the recording has not replaced has its own time.
    const auto& phase = phase_.get();
    if (phase.isBusy() || phase.is(Kind::idle)) rest();
}

/// Gives the newest dictation's recognition up, also one that is waited for.
void DictationController::cancelRecognition() {
    if (const auto transcriber = std::exchange(newest_->transcriber, nullptr)) transcriber->cancel();
}

// What the user sees

void DictationController::showRecording(DictationRun& run) {
    run.isShown = true;
    enter({Kind::recording, {}});
    collaborators_.windows.showOverlay();
    if (collaborators_.settings.playStartSound.get()) collaborators_.sounds.play(FeedbackSound::start);
}

void DictationController::showRefusal(const Refusal& refusal) {
    fail(refusal.message);
    if (refusal.opensOnboarding) collaborators_.windows.showOnboarding();
}

void DictationController::enter(DictationPhase phase) {
    messageTimer_.reset();
    phase_.set(std::move(phase));
}

/// For the phases of a run: a newer dictation's phase is not touched.
void DictationController::setPhase(const DictationRun& run, Kind kind) {
    if (isNewest(run)) enter({kind, {}});
}

void DictationController::rest() {
    enter({Kind::idle, {}});
    collaborators_.windows.hideOverlay();
}

void DictationController::fail(std::string message) {
    enter(DictationPhase::error(std::move(message)));
    delivery_.play(FeedbackSound::failure);
    collaborators_.windows.showOverlay();
    messageTimer_ = runtime_.mainQueue.after(errorShown, [this] { rest(); });
}

void DictationController::notice(std::string message) {
    enter(DictationPhase::notice(std::move(message)));
    collaborators_.windows.showOverlay();
    messageTimer_ = runtime_.mainQueue.after(noticeShown, [this] { rest(); });
}

} // namespace querlin
