// What cuts a dictation short from outside: sleep, lock, a lost microphone, the end of the program.

#include "dictation/DictationController.h"

#include "state/DiagnosticsLog.h"

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr std::string_view audioOnlyPlaceholder = "(nur Tonaufnahme – beim Beenden unterbrochen)";
constexpr std::string_view shutdownReason = "Beim Beenden des Programms unterbrochen";

std::string_view reasonOf(SystemSignal signal) {
    switch (signal) {
    case SystemSignal::willSleep:
    case SystemSignal::sessionResigned:
        return "Der Rechner wurde gesperrt oder ging in den Ruhezustand";
    case SystemSignal::screenLocked:
        return "Der Bildschirm wurde gesperrt";
    }
    return {};
}

} // namespace

void DictationController::installInterruptionObservers() {
    interruptionObservers_.reset();
    interruptionObservers_ = collaborators_.systemSignals.observe(
        lifetime_.onMain(runtime_.mainQueue, [this](SystemSignal signal, SystemHold hold) {
            interrupted(signal, std::move(hold));
        }));
}

void DictationController::interrupted(SystemSignal signal, SystemHold hold) {
    interrupt(reasonOf(signal), true, std::move(hold));
}

void DictationController::interrupt(std::string_view reason, bool forceRescue, SystemHold hold) {
    // A dictation whose key is up is delivered, whatever happens to the screen; the machine may wait for it.
    if (!recording_) {
        for (auto* run : finishing_) {
            if (hold) run->hold = hold;
        }
        return;
    }
    DiagnosticsLog::note("controller", fmt::format("Diktat unterbrochen: {}", reason));
    if (forceRescue) recording_->rescueReason = reason;
    recording_->hold = std::move(hold);
    endDictation();
}

void DictationController::configurationChanged(const ConfigurationChange& change) {
    switch (change.kind) {
    case ConfigurationChange::Kind::resumed:
        DiagnosticsLog::note(
            "audio",
            fmt::format("Eingang gewechselt ({}) – gleiches Format, Aufnahme läuft weiter.", change.text));
        return;
    case ConfigurationChange::Kind::formatChanged:
        DiagnosticsLog::note(
            "audio",
            fmt::format("Eingang gewechselt ({}) – anderes Format, Diktat wird hier beendet.", change.text));
        interrupt("Das Mikrofon hat mitten im Diktat gewechselt", false);
        return;
    case ConfigurationChange::Kind::failed:
        DiagnosticsLog::note("audio", fmt::format("Nach dem Gerätewechsel kein Eingang: {}", change.text));
        interrupt("Nach dem Mikrofonwechsel kam kein Ton mehr an", false);
        return;
    }
}

void DictationController::shutdown() {
    if (std::exchange(isShutDown_, true)) return;
    showing_.reset();
    messageTimer_.reset();
    collaborators_.correctionWatcher.stop();
    permissionRetryTimer_.reset();
    collaborators_.hotkey.stop();
    interruptionObservers_.reset();
    partialTextKeeper_.drop();
    const bool isTooShort = recording_ && collaborators_.recorder.duration() < minimumRecordingSeconds;
    closeMicrophone();
    if (isTooShort) collaborators_.recorder.discardRecording();
    rescueAtShutdown();
    cancelRecognition();
    tasks_.abandonAll();
}

/// The recording under way, and every dictation that is still being finished, with the best text that
/// there is of each.
void DictationController::rescueAtShutdown() {
    const auto save = [this](const DictationRun& run, std::string_view text,
                             std::optional<RecordingFile> recording) {
        const bool isSilent = run.transcriber && !run.transcriber->hasHeardVoice();
        if (text.empty() && isSilent) {
            if (recording) recording->discard();
            return;
        }
        collaborators_.rescue.rescue(text.empty() ? audioOnlyPlaceholder : text, std::move(recording),
                                     shutdownReason);
    };
    for (auto* run : finishing_) {
        if (run->isCancelled || (!run->recording && run->text.empty())) continue;
        save(*run, run->text.empty() ? run->partialText : run->text,
             std::exchange(run->recording, std::nullopt));
    }
    if (auto recording = collaborators_.recorder.detachRecording())
        save(*newest_, livePartialText_.get(), std::move(recording));
}

} // namespace querlin
