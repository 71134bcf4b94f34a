#pragma once

#include "cleanup/TextPipeline.h"
#include "desktop/ContextDetector.h"
#include "desktop/CorrectionWatcher.h"
#include "desktop/HotkeyManager.h"
#include "desktop/Permissions.h"
#include "desktop/SoundPlayer.h"
#include "desktop/SystemSignals.h"
#include "desktop/TextInserter.h"
#include "dictation/Delivery.h"
#include "dictation/DictationPhase.h"
#include "dictation/DictationRescue.h"
#include "dictation/DictationRun.h"
#include "dictation/DictationWindows.h"
#include "dictation/Notifier.h"
#include "dictation/PartialTextKeeper.h"
#include "foundation/Lifetime.h"
#include "foundation/Published.h"
#include "foundation/RepeatingTimer.h"
#include "foundation/Runtime.h"
#include "foundation/TaskGroup.h"
#include "speech/AudioRecorder.h"
#include "speech/TranscriberFactory.h"
#include "speech/VocabularyProvider.h"
#include "state/AppSettings.h"
#include "state/DictationHistory.h"
#include "state/UsageStatistics.h"

namespace querlin {

/// Whom the controller works with; all of them outlive it.
struct DictationCollaborators {
    AppSettings& settings;
    UsageStatistics& statistics;
    DictationHistory& history;
    DictationRescue& rescue;
    Notifier& notifier;
    DictationWindows& windows;
    SoundPlayer& sounds;

    HotkeyManager& hotkey;
    PermissionsManager& permissions;
    ContextDetector& contextDetector;
    TextInserter& inserter;
    CorrectionWatcher& correctionWatcher;
    SystemSignals& systemSignals;

    AudioRecorder& recorder;
    AudioDevices& audioDevices;
    TranscriberFactory& transcribers;
    VocabularyProvider& vocabulary;

    TextPipeline& pipeline;
};

/// The spine: turns key presses into recordings, and sends what was recorded through the pipeline to its
/// delivery. It keeps phases, timers and runs.
///
/// Everything happens on the main thread, which is the lock. The one invariant a change must keep: a
/// text that exists is delivered, taken back by the speaker's own command, or rescued; and a run
/// leaves the phase, the overlay, the recorder and the recording alone as soon as a newer dictation
/// has begun (`isNewest`).
///
/// A dictation of the hold key records at once, but nobody sees or hears it for a moment: the key may be
/// part of a shortcut, and then the dictation never was.
class DictationController {
public:
    /// Wires everything; nothing starts.
    DictationController(Runtime runtime, DictationCollaborators collaborators);
    ~DictationController();
    DictationController(const DictationController&) = delete;
    DictationController& operator=(const DictationController&) = delete;

    // Events in

    /// Hotkey, interruptions, the right to notify. Once.
    void start();
    /// Tries to listen for the hold key now, and every 2 seconds until it works.
    void installHotkey();
    /// The process is about to end: rescues what is under way, synchronously. Nothing starts any more.
    void shutdown();

    /// Begins as the menu does it: recording and its signs at once.
    void beginDictation();
    void endDictation();
    /// The menu's way to begin or end.
    void toggleDictation();
    /// Gives the dictation up, in whatever phase. A run that has its text already still delivers it.
    void cancelDictation();
    /// Pastes a law text at the cursor, whatever else goes on.
    void insertLegalText(std::string text);
    /// Writes the state of everything into the log.
    void writeDiagnostics();

    // State out

    const Published<DictationPhase>& phase() const { return phase_; }
    const Published<std::string>& livePartialText() const { return livePartialText_; }
    const Published<std::string>& lastInsertedText() const { return lastInsertedText_; }
    const Published<std::string>& lastEngineName() const { return lastEngineName_; }
    /// "1:05"
    const Published<std::string>& elapsedDescription() const { return elapsedDescription_; }
    const Published<DictationContext>& context() const { return context_; }
    const Published<EffectiveStyle>& effectiveStyle() const { return effectiveStyle_; }
    const Published<bool>& hotkeyBlocked() const { return hotkeyBlocked_; }
    /// From 0 to 1.
    const Published<float>& inputLevel() const { return inputLevel_; }
    const Published<bool>& isLongDictation() const { return isLongDictation_; }

    DictationHistory& history() const { return collaborators_.history; }

private:
    using RunPointer = std::shared_ptr<DictationRun>;
    using Transcript = std::expected<std::string, TranscriptionError>;
    enum class BegunBy : std::uint8_t { Menu, HoldKey };
    /// Why no recording begins.
    struct Refusal {
        std::string message;
        bool opensOnboarding = false;
    };
    struct RunTimes;
    class Finishing;
    /// A shorter hold leaves nothing.
    static constexpr double minimumRecordingSeconds = 0.35;

    // Wiring and small commands (DictationController.cpp)
    void permissionTick();
    Task<> insertLegalTextAtCursor(std::string text);
    std::string selectedMicrophone(const std::vector<AudioInputDevice>& inputs) const;

    // From the press to the release (DictationRecording.cpp)
    void begin(BegunBy who);
    void abandonDictation();
    std::expected<void, Refusal> record(const RunPointer& run);
    std::expected<void, Refusal> checkPermissions() const;
    void lookAtTarget(DictationRun& run);
    std::expected<void, std::string> listen(const RunPointer& run);
    std::shared_ptr<StreamingTranscriber> makeTranscriber(const RunPointer& run);
    std::vector<std::string> contextualStrings() const;
    void showRecording(DictationRun& run);
    void showRefusal(const Refusal& refusal);
    void startElapsedTimer();
    void elapsedTick();
    void partialResult(const RunPointer& run, std::string text);
    void closeMicrophone();
    void forgetRecording(DictationRun& run);
    void cancelRecognition();

    // Phases (DictationRecording.cpp)
    bool isNewest(const DictationRun& run) const { return newest_.get() == &run; }
    bool isIdle() const { return !recording_ && !phase_.get().isBusy(); }
    void enter(DictationPhase phase);
    void setPhase(const DictationRun& run, DictationPhase::Kind kind);
    void rest();
    void fail(std::string message);
    void notice(std::string message);

    // From the release to the end (DictationFinish.cpp)
    Task<> finish(RunPointer run);
    Task<bool> processAndDeliver(RunPointer run);
    Task<Transcript> transcribe(RunPointer run);
    bool hasWords(DictationRun& run, const Transcript& transcript);
    PipelineRequest requestOf(const DictationRun& run) const;
    PipelineProgress progressOf(const RunPointer& run, RunTimes& times);
    void keepText(DictationRun& run, std::string text);
    void noteOutcome(const DictationRun& run, const PipelineOutcome& outcome);
    void noteTimes(const DictationRun& run, const RunTimes& times);
    void recognitionFailed(DictationRun& run, const std::string& message);
    void nothingHeard(DictationRun& run);
    void discardOnCommand(DictationRun& run);
    void undelivered(const DictationRun& run, const DeliveryResult& result);
    void stageBroke(DictationRun& run, const std::exception& fault);

    // Interruptions (DictationInterruptions.cpp)
    void installInterruptionObservers();
    void interrupted(SystemSignal signal, SystemHold hold);
    void interrupt(std::string_view reason, bool forceRescue, SystemHold hold = {});
    void configurationChanged(const ConfigurationChange& change);
    void rescueAtShutdown();

    Runtime runtime_;
    DictationCollaborators collaborators_;

    Published<DictationPhase> phase_;
    Published<std::string> livePartialText_;
    Published<std::string> lastInsertedText_;
    Published<std::string> lastEngineName_{"–"};
    Published<std::string> elapsedDescription_{"0:00"};
    Published<DictationContext> context_;
    Published<EffectiveStyle> effectiveStyle_;
    Published<bool> hotkeyBlocked_{false};
    Published<float> inputLevel_{0.0F};
    Published<bool> isLongDictation_{false};

    /// The dictation of the last accepted key press; an older one may still be on its way.
    RunPointer newest_ = std::make_shared<DictationRun>();
    /// The newest, while the microphone is open for it.
    RunPointer recording_;
    std::vector<DictationRun*> finishing_;
    PartialTextKeeper partialTextKeeper_;
    Delivery delivery_;
    bool isShutDown_ = false;

    std::optional<RepeatingTimer> elapsedTimer_;
    /// Will show what the last press of the hold key led to.
    Registration showing_;
    /// Will take the error or notice back that is shown.
    Registration messageTimer_;
    std::optional<RepeatingTimer> permissionRetryTimer_;
    Registration interruptionObservers_;
    std::vector<Registration> settingsSubscriptions_;
    TaskGroup tasks_;
    Lifetime lifetime_;
};

} // namespace querlin
