#pragma once

#include "cleanup/EffectiveStyle.h"
#include "cleanup/EnhancementCoordinator.h"
#include "desktop/ContextDetector.h"
#include "desktop/CorrectionWatcher.h"
#include "desktop/HotkeyManager.h"
#include "desktop/Permissions.h"
#include "desktop/SoundPlayer.h"
#include "desktop/SystemSignals.h"
#include "desktop/TextInserter.h"
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
#include "foundation/TaskMutex.h"
#include "speech/AudioRecorder.h"
#include "speech/TranscriberFactory.h"
#include "speech/VocabularyProvider.h"
#include "state/AppSettings.h"
#include "state/DictationHistory.h"
#include "state/UsageStatistics.h"
#include "textchain/TextStages.h"

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

    TextStages& textStages;
    TextEnhancer& ruleBasedEnhancer;
    EnhancementCoordinator& enhancement;
};

/// The spine: turns key presses into recordings, and recordings into delivered text.
///
/// Everything happens on the main thread, which is the lock. The one invariant a change must keep: a
/// text that exists is delivered, taken back by the speaker's own command, or rescued; and a run
/// leaves the phase, the overlay, the recorder and the recording alone as soon as a newer dictation
/// has begun (`isNewest`).
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
    // Life cycle (DictationController.cpp)
    std::shared_ptr<StreamingTranscriber> makeTranscriber(const RunPointer& run);
    std::expected<void, std::string> beginListening(const RunPointer& run);
    std::vector<std::string> contextualStrings() const;
    void cancelRecognition();
    void rest();
    void fail(std::string message);
    void notice(std::string message);
    Task<> takeBack(DictationPhase::Kind kind, Duration delay);
    void startElapsedTimer();
    void elapsedTick();
    void permissionTick();
    void partialResult(const RunPointer& run, std::string text);
    Task<> insertLegalTextAtCursor(std::string text);
    void legalTextInserted(const std::string& text,
                           const std::expected<TextInserter::Outcome, InsertError>& outcome);
    std::string selectedMicrophone(const std::vector<AudioInputDevice>& inputs) const;
    bool isNewest(const DictationRun& run) const { return newest_.get() == &run; }
    void setPhase(const DictationRun& run, DictationPhase::Kind kind);
    void play(FeedbackSound sound);

    // Pipeline (DictationPipeline.cpp)
    enum class RunEnd : std::uint8_t { Delivered, Undelivered };
    struct PipelineTimes;
    class InPipeline;
    Task<> runPipeline(RunPointer run);
    Task<RunEnd> processAndDeliver(RunPointer run);
    Task<std::expected<std::string, TranscriptionError>> transcribe(RunPointer run);
    bool applyCommands(DictationRun& run);
    Task<> applyRules(RunPointer run);
    void applyDeterministicStages(DictationRun& run);
    void applyLawStages(DictationRun& run);
    Task<> polish(RunPointer run);
    void nameEngineWithoutModel(DictationRun& run);
    void nameEngine(DictationRun& run, std::string name);
    void keepText(DictationRun& run, std::string text);
    void book(DictationRun& run, const PipelineTimes& times);
    void recognitionFailed(DictationRun& run, const std::string& message);
    void nothingHeard(DictationRun& run);
    void discardOnCommand(DictationRun& run);
    void rescue(DictationRun& run, std::string_view reason);
    void insertionFailed(DictationRun& run, std::string_view reason);
    void pipelineBroke(DictationRun& run, const std::exception& fault);
    void discardRecording(DictationRun& run);

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

    /// The dictation of the last accepted key press; an older one may still be in the pipeline.
    RunPointer newest_ = std::make_shared<DictationRun>();
    std::vector<DictationRun*> inPipeline_;
    PartialTextKeeper partialTextKeeper_;
    bool isShutDown_ = false;

    std::optional<RepeatingTimer> elapsedTimer_;
    std::optional<RepeatingTimer> permissionRetryTimer_;
    Registration interruptionObservers_;
    std::vector<Registration> settingsSubscriptions_;
    /// Two insertions at once would mix up the user's clipboard.
    TaskMutex insertionTurn_;
    TaskGroup tasks_;
    Lifetime lifetime_;
};

} // namespace querlin
