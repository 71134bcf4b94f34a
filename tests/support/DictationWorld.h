#pragma once

#include "dictation/DictationController.h"
#include "foundation/OneShot.h"
#include "legal/LegalLookup.h"
#include "support/CapturedLog.h"
#include "support/FakeAudio.h"
#include "support/FakeDesktop.h"
#include "support/FakeLanguageModel.h"
#include "support/ManualTime.h"
#include "support/TempFolder.h"

#include <functional>
#include <string>
#include <variant>
#include <vector>

namespace querlin {

/// How one recognition goes.
struct RecognitionScript {
    std::optional<TranscriptionError> beginError;
    std::variant<std::string, TranscriptionError> result = "Hallo Welt.";
    Duration delay = seconds(0.4);
    /// The recogniser gives out on the way.
    bool interrupted = false;
    bool isVoice = true; ///< what it hears
};

class FakeTranscriber final : public StreamingTranscriber {
public:
    FakeTranscriber(MainQueue& queue, RecognitionScript script, std::vector<std::string>& transcripts) :
        queue_(queue), script_(std::move(script)), transcripts_(transcripts), cancelled_(queue) {}

    void setOnPartialResult(std::function<void(std::string)> callback) override { partial = std::move(callback); }
    void setContextualStrings(std::vector<std::string> strings) override { contextual = std::move(strings); }
    std::expected<void, TranscriptionError> begin(const std::string& locale) override;
    void append(const AudioBuffer&) override { ++appendedBuffers; }
    Task<std::expected<std::string, TranscriptionError>> finish() override;
    void cancel() override;
    bool wasInterrupted() const override { return script_.interrupted; }
    bool hasHeardVoice() const override { return script_.isVoice; }

    std::function<void(std::string)> partial;
    std::vector<std::string> contextual;
    int appendedBuffers = 0;
    bool isCancelled = false;

private:
    MainQueue& queue_;
    RecognitionScript script_;
    std::vector<std::string>& transcripts_;
    OneShot<bool> cancelled_;
    Registration timer_;
};

using InsertResult = std::expected<TextInserter::Outcome, InsertError>;

class FakeInserter final : public TextInserter {
public:
    explicit FakeInserter(MainQueue& queue) : queue_(queue) {}
    Task<InsertResult> insert(std::string text) override;
    void placeOnClipboard(std::string_view text) override { clipboard = text; }

    InsertResult next = Outcome::inserted;
    Duration delay = seconds(0.6);
    std::vector<std::string> delivered; ///< inserted or unconfirmed
    std::function<void()> onDelivered = [] {};
    std::string clipboard;
    int underWay = 0;
    int mostAtOnce = 0;

private:
    MainQueue& queue_;
};

/// Knows one section, § 1814 BGB, in words of our own.
class FakeLaws final : public LegalLookup {
public:
    std::optional<LegalSection> section(std::string_view id, std::string_view law) override;
    std::optional<LegalHit> sectionInAnyLaw(std::string_view id) override;

    /// Breaks in a way nobody expects.
    bool isBroken = false;
};

class FakeSignals final : public SystemSignals {
public:
    Registration observe(Observer observer) override {
        observer_ = std::make_shared<Observer>(std::move(observer));
        return Registration([this] { observer_.reset(); });
    }
    void send(SystemSignal signal, SystemHold hold = {}) {
        if (observer_) (*observer_)(signal, std::move(hold));
    }
    bool isObserved() const { return observer_ != nullptr; }

private:
    std::shared_ptr<Observer> observer_;
};

class FakeWindows final : public DictationWindows {
public:
    void showOverlay() override { overlayIsVisible = true; }
    void hideOverlay() override { overlayIsVisible = false; }
    void showOnboarding() override { ++onboardings; }
    void showCorrectionSuggestion(const CorrectionSuggestion& suggestion) override { suggestions.push_back(suggestion); }
    void showEnhancementFailureNotice(const std::string& reason) override { notices.push_back(reason); }

    bool overlayIsVisible = false;
    int onboardings = 0;
    std::vector<CorrectionSuggestion> suggestions;
    std::vector<std::string> notices;
};

class FakeServices final : public TranscriberFactory, public SoundPlayer, public NotificationService {
public:
    explicit FakeServices(MainQueue& queue) : queue_(queue) {}

    bool hasStreaming() const override { return streamingIsHere; }
    std::shared_ptr<StreamingTranscriber> make(TranscriptionEngine engine) override;
    std::string locale(DictationLanguage language) const override { return std::string(rawValue(language)); }
    void play(FeedbackSound sound) override { sounds.push_back(sound); }
    void requestAuthorization(AuthorizationAnswer answer) override { answer(true); }
    void post(std::string title, std::string body, Failure) override { notifications.push_back(title + ": " + body); }

    bool streamingIsHere = false;
    RecognitionScript script;
    std::shared_ptr<FakeTranscriber> transcriber; ///< the last one made
    std::vector<TranscriptionEngine> madeEngines;
    std::vector<std::string> transcripts; ///< all that were really handed out
    std::vector<FeedbackSound> sounds;
    std::vector<std::string> notifications;

private:
    MainQueue& queue_;
};

/// Everything around a controller, scripted, on the time and in the folder that are given. Files and text stages
/// are real.
struct FakeSurroundings {
    FakeSurroundings(Runtime runtime, const std::filesystem::path& base) : FakeSurroundings(runtime, runtime.clock, base) {}
    /// With a clock of its own for the length of recordings.
    FakeSurroundings(Runtime runtime, const Clock& recordingClock, const std::filesystem::path& base) :
        recordingsPath(base / "Aufnahme"),
        store(base / "Einstellungen.json", runtime),
        statistics(store, runtime.clock),
        history(base / "Verlauf", runtime),
        services(runtime.mainQueue),
        recorder({runtime.mainQueue, recordingClock, audio, audioFiles, RecordingFolder(recordingsPath)}),
        vocabulary(base, runtime.background),
        holdKey(runtime.clock),
        permissions(runtime.mainQueue, access),
        hotkey(runtime.mainQueue, holdKey, permissions, settings.hotkey.get(), "/opt/querlin"),
        watcher(runtime, permissions, desktop),
        inserter(runtime.mainQueue),
        model(runtime.mainQueue),
        modelEnhancer(model, runtime.mainQueue),
        coordinator(runtime, modelEnhancer),
        pipeline(runtime, laws, coordinator),
        rescueFolder(base / "Gerettete Diktate", runtime.clock) {}

    DictationCollaborators collaborators();

    std::filesystem::path recordingsPath;
    PreferencesStore store;
    AppSettings settings{store};
    UsageStatistics statistics;
    DictationHistory history;
    FakeServices services;
    FakeAudioHardware audio;
    AudioDevices devices{audio};
    FakeAudioFiles audioFiles;
    AudioRecorder recorder;
    VocabularyProvider vocabulary; ///< reads the base folder
    FakeHoldKey holdKey;
    FakeAccess access;
    FakeDesktop desktop;
    PermissionsManager permissions;
    HotkeyManager hotkey;
    ContextDetector contextDetector{permissions, desktop, desktop};
    CorrectionWatcher watcher;
    FakeInserter inserter;
    FakeLaws laws;
    FakeLanguageModel model;
    LocalModelEnhancer modelEnhancer;
    EnhancementCoordinator coordinator;
    TextPipeline pipeline;
    FakeSignals signals;
    FakeWindows windows;
    Notifier notifier{&services};
    RescueFolder rescueFolder;
    DictationRescue rescue{rescueFolder, inserter, notifier};
};

/// What must be there before the surroundings.
struct VirtualGround {
    TempFolder folder;
    CapturedLog log;
    ManualTime time;
};

/// A controller among its surroundings, on virtual time.
class DictationWorld : public VirtualGround, public FakeSurroundings {
public:
    DictationWorld();

    // Gestures; each settles.
    /// Presses the key and waits until that shows.
    void press();
    void release();
    /// Holds the key for a span and lets it go.
    void hold(Duration span);
    /// The key goes down, or up, and nothing else happens.
    void key(HoldKeyEvent::Kind kind);
    /// Moves time on.
    void wait(Duration span) { time.advance(span); }
    /// A whole dictation that has come to rest.
    void dictate(std::string transcript);

    DictationPhase::Kind phase() const { return controller.phase().get().kind; }
    std::string errorText() const { return controller.phase().get().text; }
    std::vector<FeedbackSound> takeSounds() { return std::exchange(services.sounds, {}); }

    /// Contents of the rescued texts, in the order of the file names.
    std::vector<std::string> rescuedTexts() const;
    std::size_t rescuedRecordings() const;
    /// Files left in the folder of recordings.
    std::vector<std::string> recordings() const { return fileNames(recordingsPath); }

    DictationController controller{time.runtime(), collaborators()};
};

} // namespace querlin
