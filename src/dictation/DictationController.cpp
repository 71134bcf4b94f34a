#include "dictation/DictationController.h"

#include "foundation/Waiting.h"
#include "state/DiagnosticsLog.h"

#include <algorithm>

#include <fmt/format.h>

namespace querlin {

using Kind = DictationPhase::Kind;

namespace {

constexpr double minimumRecordingSeconds = 0.35;
constexpr Duration errorShown = std::chrono::milliseconds(2200);
constexpr Duration noticeShown = std::chrono::milliseconds(1600);
constexpr Duration elapsedInterval = std::chrono::milliseconds(500);
constexpr Duration permissionRetryInterval = std::chrono::seconds(2);

} // namespace

DictationController::DictationController(Runtime runtime, DictationCollaborators collaborators) :
    runtime_(runtime),
    collaborators_(collaborators),
    partialTextKeeper_(runtime,
                       [this](const std::string& text) {
                           if (const auto* recording = collaborators_.recorder.recording())
                               recording->keepText(text);
                       }),
    insertionTurn_(runtime.mainQueue) {
    auto& queue = runtime_.mainQueue;
    auto& settings = collaborators_.settings;

    collaborators_.hotkey.update(settings.hotkey.get());
    collaborators_.hotkey.setCallbacks([this] { beginDictation(); }, [this] { endDictation(); },
                                       [this] { cancelDictation(); });
    collaborators_.history.setRetentionDays(settings.historyRetentionDays.get());
    settingsSubscriptions_.push_back(settings.historyRetentionDays.subscribe(
        [this](std::int64_t days) { collaborators_.history.setRetentionDays(days); }, FirstValue::Skip));
    collaborators_.correctionWatcher.setOnSuggestion([this](const CorrectionSuggestion& suggestion) {
        collaborators_.windows.showCorrectionSuggestion(suggestion);
    });
    settingsSubscriptions_.push_back(settings.hotkey.subscribe(
        [this](const HotkeyConfig& config) { collaborators_.hotkey.update(config); }, FirstValue::Skip));
    collaborators_.recorder.setPreferredDeviceUID(settings.inputDeviceUID.get());
    settingsSubscriptions_.push_back(settings.inputDeviceUID.subscribe(
        [this](const std::optional<std::string>& uid) { collaborators_.recorder.setPreferredDeviceUID(uid); },
        FirstValue::Skip));
    collaborators_.recorder.setOnLevel(lifetime_.onMain(queue, [this](float level) {
        // A report may be on its way when the recording ends.
        if (phase_.get().is(Kind::recording)) inputLevel_.set(level);
    }));
    collaborators_.recorder.setOnConfigurationChange(
        lifetime_.onMain(queue, [this](const ConfigurationChange& change) { configurationChanged(change); }));
}

DictationController::~DictationController() {
    // The collaborators live on: nothing of theirs may call back into what is going.
    collaborators_.hotkey.setCallbacks({}, {}, {});
    collaborators_.correctionWatcher.setOnSuggestion({});
    collaborators_.recorder.setOnBuffer({});
    tasks_.abandonAll();
}

void DictationController::start() {
    installHotkey();
    installInterruptionObservers();
    collaborators_.notifier.requestAuthorizationIfNeeded();
}

void DictationController::installHotkey() {
    const bool started = collaborators_.hotkey.start();
    hotkeyBlocked_.set(!started);
    DiagnosticsLog::note("controller", started ? "installHotkey → OK" : "installHotkey → fehlgeschlagen");
    permissionRetryTimer_.reset();
    if (started) return;
    DiagnosticsLog::note("controller", "Warte auf Bedienungshilfen, prüfe alle 2 s…");
    permissionRetryTimer_.emplace(runtime_.mainQueue, permissionRetryInterval, [this] { permissionTick(); });
}

void DictationController::permissionTick() {
    if (!collaborators_.permissions.isAccessibilityTrusted() || !collaborators_.hotkey.start()) return;
    hotkeyBlocked_.set(false);
    permissionRetryTimer_.reset();
}

// The beginning

void DictationController::beginDictation() {
    const auto& present = phase_.get();
    if (isShutDown_ || !(present.is(Kind::idle) || present.is(Kind::error))) return;

    auto& settings = collaborators_.settings;
    const auto run = newest_ = std::make_shared<DictationRun>();

    if (!isGranted(collaborators_.permissions.microphoneState())) {
        fail("Mikrofon-Zugriff fehlt");
        collaborators_.windows.showOnboarding();
        return;
    }
    if (settings.engine.get() == TranscriptionEngine::classic &&
        !isGranted(collaborators_.permissions.speechState())) {
        fail("Spracherkennung nicht erlaubt");
        collaborators_.windows.showOnboarding();
        return;
    }

    livePartialText_.set("");
    inputLevel_.set(0);
    const bool contextAware = settings.contextAwareStyle.get();
    run->context = contextAware ? collaborators_.contextDetector.capture() : DictationContext();
    run->style =
        EffectiveStyle::resolve(run->context,
                                contextAware ? std::span<const AppProfile>(settings.appProfiles.get())
                                             : std::span<const AppProfile>(),
                                settings.writingStyle.get(), true);
    context_.set(run->context);
    effectiveStyle_.set(run->style);

    if (run->context.field == DictationContext::FieldKind::secure) {
        fail("Passwortfeld – hier wird nicht eingefügt");
        return;
    }
    if (const auto listening = beginListening(run); !listening) {
        cancelRecognition();
        collaborators_.recorder.setOnBuffer({});
        fail(listening.error());
        return;
    }
    phase_.set({Kind::recording, {}});
    startElapsedTimer();
    collaborators_.windows.showOverlay();
    if (settings.playStartSound.get()) collaborators_.sounds.play(FeedbackSound::start);
}

std::expected<void, std::string> DictationController::beginListening(const RunPointer& run) {
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
    if (phase_.get().is(Kind::recording)) partialTextKeeper_.update(std::move(text));
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
    if (!phase_.get().is(Kind::recording)) return;
    const auto run = newest_;
    elapsedTimer_.reset();
    run->recordingSeconds = collaborators_.recorder.duration();
    collaborators_.recorder.stop();
    collaborators_.recorder.setOnBuffer({});
    inputLevel_.set(0);

    if (run->recordingSeconds < minimumRecordingSeconds) {
        partialTextKeeper_.drop();
        cancelRecognition();
        run->hold.reset();
        collaborators_.recorder.discardRecording();
        rest();
        return;
    }
    partialTextKeeper_.finish();
    run->recording = collaborators_.recorder.detachRecording();
    phase_.set({Kind::transcribing, {}});
    tasks_.start(runPipeline(run));
}

void DictationController::toggleDictation() {
    DiagnosticsLog::note("menu", fmt::format("Aufnahme umschalten, Phase={}", phase_.get().statusText()));
    if (phase_.get().is(Kind::recording)) {
        endDictation();
    } else {
        beginDictation();
    }
}

void DictationController::cancelDictation() {
    const auto run = newest_;
    elapsedTimer_.reset();
    partialTextKeeper_.drop();
    run->isCancelled = true;
    run->rescueReason.reset();
    run->hold.reset();
    inputLevel_.set(0);
    cancelRecognition();
    collaborators_.recorder.stop();
    collaborators_.recorder.setOnBuffer({});
    collaborators_.recorder.discardRecording();
    discardRecording(*run);
    rest();
}

/// Gives the newest dictation's recognition up, also one that a pipeline is waiting for.
void DictationController::cancelRecognition() {
    if (const auto transcriber = std::exchange(newest_->transcriber, nullptr)) transcriber->cancel();
}

void DictationController::rest() {
    phase_.set({Kind::idle, {}});
    collaborators_.windows.hideOverlay();
}

/// For the phases of a run: a newer dictation's phase is not touched.
void DictationController::setPhase(const DictationRun& run, Kind kind) {
    if (isNewest(run)) phase_.set({kind, {}});
}

void DictationController::play(FeedbackSound sound) {
    if (collaborators_.settings.playStopSound.get()) collaborators_.sounds.play(sound);
}

void DictationController::fail(std::string message) {
    newest_->transcriber.reset();
    collaborators_.recorder.setOnBuffer({});
    phase_.set(DictationPhase::error(std::move(message)));
    play(FeedbackSound::failure);
    collaborators_.windows.showOverlay();
    tasks_.start(takeBack(Kind::error, errorShown));
}

void DictationController::notice(std::string message) {
    phase_.set(DictationPhase::notice(std::move(message)));
    collaborators_.windows.showOverlay();
    tasks_.start(takeBack(Kind::notice, noticeShown));
}

/// Ends the phase `kind` after a while, if it is still that kind.
Task<> DictationController::takeBack(Kind kind, Duration delay) {
    co_await sleepFor(runtime_.mainQueue, delay);
    if (phase_.get().is(kind)) rest();
}

// Small commands

void DictationController::insertLegalText(std::string text) {
    if (!isShutDown_) tasks_.start(insertLegalTextAtCursor(std::move(text)));
}

Task<> DictationController::insertLegalTextAtCursor(std::string text) {
    const auto turn = co_await insertionTurn_.lock();
    const auto outcome = co_await collaborators_.inserter.insert(text);
    legalTextInserted(text, outcome);
}

void DictationController::legalTextInserted(
    const std::string& text, const std::expected<TextInserter::Outcome, InsertError>& outcome) {
    if (!outcome) {
        const std::string reason(description(outcome.error()));
        if (phase_.get().isBusy()) {
            // The phase belongs to the dictation under way; its words must not suffer from this.
            collaborators_.rescue.rescue(text, std::nullopt, reason);
        } else {
            fail(reason);
        }
    } else if (*outcome == TextInserter::Outcome::notInserted) {
        collaborators_.rescue.rescue(text, std::nullopt, "Der Gesetzestext kam im Zielfeld nicht an");
    } else {
        lastInsertedText_.set(text);
    }
}

void DictationController::writeDiagnostics() {
    const auto& settings = collaborators_.settings;
    const auto inputs = collaborators_.audioDevices.inputs();
    const std::vector<std::string> lines = {
        "--- Diagnose ---",
        "  " + collaborators_.hotkey.diagnosticsSummary(),
        fmt::format("  Mikrofon: {}", caseName(collaborators_.permissions.microphoneState())),
        fmt::format("  Spracherkennung: {}", caseName(collaborators_.permissions.speechState())),
        fmt::format("  Phase: {}", phase_.get().statusText()),
        fmt::format("  hotkeyBlocked: {}", hotkeyBlocked_.get()),
        fmt::format("  Engine: {}, Sprache: {}", rawValue(settings.engine.get()),
                    rawValue(settings.language.get())),
        fmt::format("  Mikrofon: {} (verfügbar: {})", selectedMicrophone(inputs), inputs.size()),
        fmt::format("  Diktate gesamt: {}, Wörter: {}", collaborators_.statistics.dictationCount.get(),
                    collaborators_.statistics.wordCount.get()),
        fmt::format("  Gerettete Diktate vorhanden: {}", collaborators_.rescue.hasEntries()),
    };
    DiagnosticsLog::note("diag", fmt::format("{}", fmt::join(lines, "\n")));
}

std::string DictationController::selectedMicrophone(const std::vector<AudioInputDevice>& inputs) const {
    const auto& chosen = collaborators_.settings.inputDeviceUID.get();
    const auto found =
        std::ranges::find_if(inputs, [&](const auto& input) { return chosen && input.uid == *chosen; });
    return found == inputs.end() ? "Systemvorgabe" : found->name;
}

} // namespace querlin
