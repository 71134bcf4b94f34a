#include "dictation/DictationController.h"

#include "state/DiagnosticsLog.h"

#include <algorithm>

#include <fmt/format.h>

namespace querlin {

namespace {

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
    delivery_(runtime.mainQueue, {.settings = collaborators.settings,
                                  .statistics = collaborators.statistics,
                                  .history = collaborators.history,
                                  .rescue = collaborators.rescue,
                                  .inserter = collaborators.inserter,
                                  .correctionWatcher = collaborators.correctionWatcher,
                                  .sounds = collaborators.sounds}) {
    auto& queue = runtime_.mainQueue;
    auto& settings = collaborators_.settings;

    collaborators_.hotkey.update(settings.hotkey.get());
    collaborators_.hotkey.setCallbacks([this] { begin(BegunBy::HoldKey); }, [this] { endDictation(); },
                                       [this] { abandonDictation(); });
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
        if (recording_) inputLevel_.set(level);
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

// Small commands

void DictationController::insertLegalText(std::string text) {
    if (!isShutDown_) tasks_.start(insertLegalTextAtCursor(std::move(text)));
}

Task<> DictationController::insertLegalTextAtCursor(std::string text) {
    const auto result = co_await delivery_.deliverLawText(text);
    if (result.kind == DeliveryResult::Kind::delivered) {
        lastInsertedText_.set(text);
    } else if (result.kind == DeliveryResult::Kind::failed && isIdle()) {
        fail(result.reason);
    } else if (result.kind == DeliveryResult::Kind::failed) {
        // The phase belongs to the dictation under way; its words must not suffer from this.
        delivery_.rescueLawText(text, result.reason);
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
