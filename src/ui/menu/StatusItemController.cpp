#include "ui/menu/StatusItemController.h"

#include "state/DiagnosticsLog.h"
#include "ui/brand/Brand.h"
#include "ui/brand/Theme.h"
#include "ui/menu/OpenFile.h"

#include <fmt/format.h>

namespace querlin {

namespace {

/// Enough for a panel that starts with the session, or is restarted.
constexpr auto trayPatience = std::chrono::seconds(3);

} // namespace

StatusItemController::StatusItemController(StatusItemSources sources) : sources_(std::move(sources)) {
    subscribe();
    trayWent();
    lookAtTrays();
}

StatusItemController::~StatusItemController() = default;

void StatusItemController::subscribe() {
    const auto follow = [this](const auto& published, auto react) {
        subscriptions_.push_back(
            published.subscribe([this, react](const auto&) { (this->*react)(); }, FirstValue::Skip));
    };
    follow(sources_.notifierHost, &StatusItemController::lookAtTrays);
    follow(sources_.systemTray.isThere(), &StatusItemController::lookAtTrays);
    follow(sources_.controller.phase(), &StatusItemController::showPhase);
    follow(sources_.controller.hotkeyBlocked(), &StatusItemController::rebuildMenu);
    follow(sources_.controller.lastInsertedText(), &StatusItemController::rebuildMenu);
    follow(sources_.windows.lastNotice(), &StatusItemController::rebuildMenu);
    follow(sources_.settings.hotkey, &StatusItemController::rebuildMenu);
    follow(Theme::appearance(), &StatusItemController::showPhase);
}

// Tray or window

void StatusItemController::lookAtTrays() {
    const TrayHosts hosts{sources_.notifierHost.get(), sources_.systemTray.isThere().get()};
    if (!item_ && hosts.allowIcon()) {
        item_ = std::make_unique<StatusItem>([this](MenuCommand command) { perform(command); });
        showPhase();
        if (sources_.controller.phase().get().is(DictationPhase::Kind::idle))
            item_->setToolTip(std::string(Brand::productName));
    }
    const bool hasTray = item_ && hosts.show(item_->protocol());
    if (hasTray == hasTray_) return;
    hasTray_ = hasTray;
    if (window_) window_->setHasTray(hasTray);
    if (hasTray) {
        trayCame();
    } else {
        trayWent();
    }
}

void StatusItemController::trayCame() {
    DiagnosticsLog::note("menu", "Das Symbol steht in der Leiste.");
    patience_.reset();
    if (window_) window_->withdraw();
}

void StatusItemController::trayWent() {
    patience_ = sources_.runtime.mainQueue.after(trayPatience, [this] {
        DiagnosticsLog::note("menu",
                             "Es gibt keine Leiste für das Symbol – die Befehle stehen in einem Fenster.");
        window().offer();
    });
}

CommandWindow& StatusItemController::window() {
    if (!window_) {
        window_ = std::make_unique<CommandWindow>([this](MenuCommand command) { perform(command); },
                                                  sources_.surfaces);
        window_->setHasTray(hasTray_);
        rebuildMenu();
    }
    return *window_;
}

void StatusItemController::present() { window().present(); }

// Entries

void StatusItemController::showPhase() {
    const auto& phase = sources_.controller.phase().get();
    if (item_) {
        item_->setSymbol(phase.is(DictationPhase::Kind::idle) ? std::string_view() : phase.symbolName());
        item_->setToolTip(fmt::format("{} – {}", Brand::productName, phase.statusText()));
    }
    rebuildMenu();
}

void StatusItemController::rebuildMenu() {
    const auto& phase = sources_.controller.phase().get();
    const auto entries = statusMenu({.phase = phase,
                                     .hotkey = sources_.settings.hotkey.get().displayName(),
                                     .isHotkeyBlocked = sources_.controller.hotkeyBlocked().get(),
                                     .lastNotice = sources_.windows.lastNotice().get(),
                                     .hasLastText = !sources_.controller.lastInsertedText().get().empty()});
    if (item_) item_->setEntries(entries);
    if (window_) window_->setEntries(entries, phase.symbolName());
}

// Commands

void StatusItemController::perform(MenuCommand command) {
    using enum MenuCommand;
    switch (command) {
    case none:
        return;
    case openAccessibilitySettings:
        sources_.permissions.requestAccessibility();
        sources_.permissions.openSystemSettings(PermissionsManager::SettingsPane::accessibility);
        return;
    case clearNotice:
        sources_.windows.clearNotice();
        return;
    case toggleDictation:
        tasks_.start(this->toggleDictation());
        return;
    case cancelDictation:
        sources_.controller.cancelDictation();
        return;
    case copyLastText:
        sources_.inserter.placeOnClipboard(sources_.controller.lastInsertedText().get());
        return;
    case openHistory:
        sources_.windows.showHistory();
        return;
    case openLegal:
        sources_.windows.showLegalLookup();
        return;
    case openSettings:
        sources_.windows.showSettings(SettingsSection::general);
        return;
    case openOnboarding:
        sources_.windows.showOnboarding();
        return;
    case openSuite:
        sources_.windows.showSuite();
        return;
    case writeDiagnostics:
        sources_.controller.writeDiagnostics();
        OpenFile::inFileManager(sources_.fileManager, sources_.logFile);
        return;
    case runBenchmark:
        sources_.windows.showComingLater(
            "Engine-Vergleich", "Der Vergleich der Spracherkenner kommt mit einer späteren Version.");
        return;
    case runProbe:
        sources_.windows.showComingLater("Kettenprüfung",
                                         "Die Prüfung der Textkette kommt mit einer späteren Version.");
        return;
    case runFieldProbe:
        sources_.windows.showComingLater("Feldbeobachtung",
                                         "Die Prüfung der Feldbeobachtung kommt mit einer späteren Version.");
        return;
    case openLog:
        OpenFile::withDefaultApplication(sources_.logFile);
        return;
    case checkLaws:
        sources_.legalUpdates.checkNow();
        sources_.windows.showSettings(SettingsSection::laws);
        return;
    case checkForUpdates:
        sources_.windows.showUpdateWindow();
        return;
    case openAbout:
        sources_.windows.showAbout();
        return;
    case quit:
        sources_.quit();
        return;
    }
}

/// Started from our own window, the dictation goes to the field that had the focus before.
Task<> StatusItemController::toggleDictation() {
    const auto isRecording = [this] {
        return sources_.controller.phase().get().is(DictationPhase::Kind::recording);
    };
    if (!isRecording() && window_ && window_->isActiveWindow()) {
        co_await sources_.focusReturn.giveBack();
        if (isRecording()) co_return; // The key or a second click has started it meanwhile.
    }
    sources_.controller.toggleDictation();
}

} // namespace querlin
