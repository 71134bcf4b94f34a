#include "app/Program.h"

#include "app/SetupReport.h"
#include "cleanup/TextPipeline.h"
#include "desktop/ClipboardInserter.h"
#include "dictation/CrashRecovery.h"
#include "speech/LocalTranscribers.h"
#include "state/DiagnosticsLog.h"
#include "state/Migration.h"
#include "state/Product.h"
#include "ui/brand/Brand.h"
#include "ui/brand/Theme.h"

#include <unistd.h>

#include <QSysInfo>
#include <fmt/format.h>

namespace querlin {

namespace {

/// Something is to be seen first: what comes next starts threads and a process.
constexpr auto untilIconIsThere = std::chrono::milliseconds(30);
constexpr auto untilOverlayIsPrepared = std::chrono::milliseconds(500);
/// By then the notification service can be reached.
constexpr auto untilRecovery = std::chrono::seconds(1);
constexpr auto untilLawCheck = std::chrono::seconds(8);

} // namespace

struct Program::Dictation {
    explicit Dictation(Program& app);

    // Texts
    NoLanguageModel model;
    LocalModelEnhancer modelEnhancer;
    EnhancementCoordinator enhancement;
    TextPipeline pipeline;
    DictationHistory history;

    // The desktop
    HotkeyManager hotkey;
    ContextDetector contextDetector;
    CorrectionWatcher watcher;
    ClipboardInserter inserter;
    Notifier notifier;
    RescueFolder rescueFolder;
    DictationRescue rescue{rescueFolder, inserter, notifier};

    // Hearing
    AudioRecorder recorder;
    LocalTranscribers transcribers;

    DictationController controller;
};

Program::Dictation::Dictation(Program& app) :
    modelEnhancer(model, app.machine_.queue),
    enhancement(app.machine_.runtime(), modelEnhancer),
    pipeline(app.machine_.runtime(), app.corpus_, enhancement),
    history(app.places_.paths.support, app.machine_.storageRuntime()),
    hotkey(app.machine_.queue, app.machine_.display->holdKey(), app.permissions_, app.settings_->hotkey.get(),
           app.places_.executable),
    contextDetector(app.permissions_, app.machine_.accessibility, app.machine_.display->workspace()),
    watcher(app.machine_.runtime(), app.permissions_, app.machine_.accessibility),
    inserter({.runtime = app.machine_.runtime(),
              .permissions = app.permissions_,
              .accessibility = app.machine_.accessibility,
              .workspace = app.machine_.display->workspace(),
              .clipboard = app.machine_.display->clipboard(),
              .pasteKey = app.machine_.display->pasteKey()}),
    notifier(&app.machine_.notifications),
    rescueFolder(app.places_.paths.rescuedDictations(), app.machine_.clock),
    recorder({.mainQueue = app.machine_.queue,
              .clock = app.machine_.clock,
              .hardware = app.machine_.hardware,
              .files = app.machine_.audioFiles,
              .folder = RecordingFolder(app.places_.paths.recordings)}),
    transcribers(app.machine_.runtime(), app.machine_.classic, app.machine_.streaming),
    controller(app.machine_.runtime(), {.settings = *app.settings_,
                                        .statistics = *app.statistics_,
                                        .history = history,
                                        .rescue = rescue,
                                        .notifier = notifier,
                                        .windows = *app.windows_,
                                        .sounds = app.machine_.sounds,
                                        .hotkey = hotkey,
                                        .permissions = app.permissions_,
                                        .contextDetector = contextDetector,
                                        .inserter = inserter,
                                        .correctionWatcher = watcher,
                                        .systemSignals = app.machine_.signals,
                                        .recorder = recorder,
                                        .audioDevices = app.machine_.devices,
                                        .transcribers = transcribers,
                                        .vocabulary = app.vocabulary_,
                                        .pipeline = pipeline}) {}

Program::Program(Machine& machine, Places places, std::function<void()> quit) :
    machine_(machine),
    places_(std::move(places)),
    quit_(std::move(quit)),
    lawFiles_(places_.paths.laws(), places_.resources),
    corpus_(lawFiles_, machine.lawRuntime()),
    vocabulary_(places_.resources, machine.pool),
    permissions_(machine.queue, machine.access),
    attention_(machine.queue, machine.buses, std::string(Product::applicationId),
               [this] {
                   if (statusItemController_) statusItemController_->present();
               }),
    colors_(machine.queue, machine.buses, [](bool prefersDark) {
        Theme::appearance().set(prefersDark ? Appearance::dark : Appearance::light);
    }) {}

Program::~Program() {
    machine_.pool.finish(); // What runs there uses what goes now.
    machine_.lawPool.finish();
    if (windows_) windows_->setController(nullptr);
}

void Program::start() {
    DiagnosticsLog::note("app", fmt::format("=== Start === {}", places_.executable));
    DiagnosticsLog::note("app",
                         fmt::format("PID {}, {}", ::getpid(), Brand::utf8(QSysInfo::prettyProductName())));

    preferences_ = std::make_unique<PreferencesStore>(places_.paths.preferencesFile(Product::applicationId),
                                                      machine_.storageRuntime());
    Migration::runIfNeeded(*preferences_, Product::legacyDomain,
                           places_.paths.preferencesFile(Product::legacyDomain));
    settings_ = std::make_unique<AppSettings>(*preferences_);
    settings_->recordLaunch(machine_.clock.now());
    statistics_ = std::make_unique<UsageStatistics>(*preferences_, machine_.clock);
    legalUpdates_ = std::make_unique<LegalUpdateService>(*settings_, lawFiles_, corpus_, machine_.http,
                                                         machine_.lawRuntime());
    windows_ =
        std::make_unique<WindowCoordinator>(WindowSources{.runtime = machine_.runtime(),
                                                          .settings = *settings_,
                                                          .statistics = *statistics_,
                                                          .legalUpdates = *legalUpdates_,
                                                          .corpus = corpus_,
                                                          .focusReturn = machine_.display->focusReturn(),
                                                          .surfaces = machine_.display->surfaces(),
                                                          .findings = [this] { return findings(); }});
    dictation_ = std::make_unique<Dictation>(*this);
    windows_->setController(&dictation_->controller);
    makeStatusItem();
    later(untilIconIsThere, [this] { startListening(); });
}

void Program::startListening() {
    preload();
    dictation_->controller.start();
    // The machine may not come back from a sleep, and a shutdown is soon over.
    flushing_ = machine_.signals.observe([this](SystemSignal, const SystemHold&) {
        preferences_->flush();
        dictation_->history.flush();
    });
    later(untilOverlayIsPrepared, [this] { windows_->prepareOverlay(); });
    later(untilRecovery, [this] { reportTroubles(); });
    later(untilLawCheck, [this] { legalUpdates_->checkIfDue(); });
    if (!permissions_.isAccessibilityTrusted()) {
        DiagnosticsLog::note("app", "Nicht berechtigt – zeige Systemdialog.");
        permissions_.requestAccessibility();
    }
    if (!settings_->hasCompletedOnboarding.get()) windows_->showOnboarding();
}

void Program::makeStatusItem() {
    statusItemController_ = std::make_unique<StatusItemController>(
        StatusItemSources{.runtime = machine_.runtime(),
                          .controller = dictation_->controller,
                          .settings = *settings_,
                          .windows = *windows_,
                          .legalUpdates = *legalUpdates_,
                          .permissions = permissions_,
                          .inserter = dictation_->inserter,
                          .focusReturn = machine_.display->focusReturn(),
                          .surfaces = machine_.display->surfaces(),
                          .systemTray = machine_.display->systemTray(),
                          .notifierHost = machine_.notifierHost.isThere(),
                          .fileManager = machine_.fileManager,
                          .logFile = places_.paths.log,
                          .quit = quit_});
}

/// Each returns at once; whoever is faster than these waits.
void Program::preload() {
    corpus_.preload();
    vocabulary_.preload();
    if (settings_->cleanupMode.get() == CleanupMode::local)
        dictation_->modelEnhancer.prewarm(settings_->writingStyle.get());
    if (settings_->engine.get() == TranscriptionEngine::streaming && machine_.streaming.isHere("")) {
        machine_.streaming.preload();
        return;
    }
    auto begin = lifetime_.onMain(machine_.queue, [this](std::vector<std::string> words) {
        machine_.classic.preload(std::move(words));
    });
    machine_.pool.run(
        [this, begin, terms = settings_->userDictionary.get(), limit = settings_->contextualLimit.get()] {
            begin(vocabulary_.contextualStrings(terms, limit));
        });
}

void Program::later(Duration delay, Work work) {
    delayed_.push_back(machine_.queue.after(delay, std::move(work)));
}

void Program::reportTroubles() {
    CrashRecovery::rescueLeftBehind(RecordingFolder(places_.paths.recordings), dictation_->rescueFolder,
                                    dictation_->notifier);
    if (const auto& trouble = preferences_->readingTrouble()) report("Einstellungen", *trouble);
    const auto reportLater = [this](std::string title, const Published<std::optional<std::string>>& trouble) {
        troubles_.push_back(trouble.subscribe([this, title = std::move(title)](const auto& text) {
            if (text) report(title, *text);
        }));
    };
    reportLater("Einstellungen", preferences_->writingTrouble());
    reportLater("Verlauf", dictation_->history.trouble());
}

void Program::report(const std::string& title, const std::string& trouble) {
    windows_->showEnhancementFailureNotice(trouble);
    dictation_->notifier.post(title, trouble);
}

std::vector<SetupFinding> Program::findings() {
    return SetupReport::make({.machine = machine_,
                              .models = places_.paths.models(),
                              .engine = settings_->engine.get(),
                              .corpus = corpus_,
                              .hotkey = settings_->hotkey.get().displayName(),
                              .settingsTrouble = preferences_->trouble()});
}

void Program::end() {
    if (dictation_) dictation_->controller.shutdown();
}

} // namespace querlin
