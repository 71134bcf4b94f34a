#include "ui/menu/StatusItemController.h"

#include "ui/brand/Brand.h"
#include "ui/display/BringToFront.h"
#include "ui/menu/TrayHost.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDesktopServices>
#include <QUrl>

#include <fmt/format.h>

namespace querlin {

namespace {

/// A panel that comes up with the session has been there by then.
constexpr auto trayPatience = std::chrono::seconds(3);
constexpr auto betweenLooks = std::chrono::seconds(2);

QUrl urlOf(const std::filesystem::path& file) { return QUrl::fromLocalFile(Brand::text(file.string())); }

void openWithDefaultApplication(const std::filesystem::path& file) {
    if (!QDesktopServices::openUrl(urlOf(file))) QDesktopServices::openUrl(urlOf(file.parent_path()));
}

/// Selects the file in the desktop's file manager.
void showInFileManager(const std::filesystem::path& file) {
    const auto name = QStringLiteral("org.freedesktop.FileManager1");
    auto call = QDBusMessage::createMethodCall(name, QStringLiteral("/org/freedesktop/FileManager1"), name,
                                               QStringLiteral("ShowItems"));
    call << QStringList(urlOf(file).toString()) << QString();
    const auto answer = QDBusConnection::sessionBus().call(call, QDBus::Block, 2000);
    if (answer.type() == QDBusMessage::ErrorMessage) QDesktopServices::openUrl(urlOf(file.parent_path()));
}

} // namespace

StatusItemController::StatusItemController(StatusItemSources sources) : with_(std::move(sources)) {
    const auto follow = [this](const auto& published, auto react) {
        subscriptions_.push_back(
            published.subscribe([this, react](const auto&) { (this->*react)(); }, FirstValue::Skip));
    };
    follow(with_.controller.phase(), &StatusItemController::showPhase);
    follow(with_.controller.hotkeyBlocked(), &StatusItemController::rebuildMenu);
    follow(with_.controller.lastInsertedText(), &StatusItemController::rebuildMenu);
    follow(with_.windows.lastNotice(), &StatusItemController::rebuildMenu);
    follow(with_.settings.hotkey, &StatusItemController::rebuildMenu);
    lookForTray();
    if (item_) return;
    trayTimer_.emplace(with_.runtime.mainQueue, betweenLooks, [this] { lookForTray(); });
    patience_ = with_.runtime.mainQueue.after(trayPatience, [this] {
        if (item_) return;
        window().setAttribute(Qt::WA_ShowWithoutActivating); // The user may be writing, or dictating.
        window().show();
    });
}

StatusItemController::~StatusItemController() = default;

void StatusItemController::lookForTray() {
    if (!TrayHost::isThere()) return;
    trayTimer_.reset();
    item_ = std::make_unique<StatusItem>([this](MenuCommand command) { perform(command); });
    item_->setToolTip(std::string(Brand::productName));
    if (window_) window_->setHasTray(true);
    if (window_ && !isWindowWished_) window_->hide();
    rebuildMenu();
}

CommandWindow& StatusItemController::window() {
    if (!window_) {
        window_ = std::make_unique<CommandWindow>([this](MenuCommand command) { perform(command); });
        window_->setHasTray(item_ != nullptr);
        rebuildMenu();
    }
    return *window_;
}

void StatusItemController::present() {
    isWindowWished_ = true;
    window().setAttribute(Qt::WA_ShowWithoutActivating, false);
    bringToFront(window());
}

void StatusItemController::showPhase() {
    const auto& phase = with_.controller.phase().get();
    if (item_) {
        item_->setSymbol(phase.is(DictationPhase::Kind::idle) ? std::string_view() : phase.symbolName());
        item_->setToolTip(fmt::format("{} – {}", Brand::productName, phase.statusText()));
    }
    rebuildMenu();
}

void StatusItemController::rebuildMenu() {
    const auto& phase = with_.controller.phase().get();
    const auto entries = statusMenu({.phase = phase,
                                     .hotkey = with_.settings.hotkey.get().displayName(),
                                     .isHotkeyBlocked = with_.controller.hotkeyBlocked().get(),
                                     .lastNotice = with_.windows.lastNotice().get(),
                                     .hasLastText = !with_.controller.lastInsertedText().get().empty()});
    if (item_) item_->setMenu(entries);
    if (window_) window_->setEntries(entries, phase.symbolName());
}

void StatusItemController::perform(MenuCommand command) {
    using enum MenuCommand;
    switch (command) {
    case none:
        return;
    case openAccessibilitySettings:
        with_.permissions.requestAccessibility();
        with_.permissions.openSystemSettings(PermissionsManager::SettingsPane::accessibility);
        return;
    case clearNotice:
        with_.windows.clearNotice();
        return;
    case toggleDictation:
        tasks_.start(this->toggleDictation());
        return;
    case cancelDictation:
        with_.controller.cancelDictation();
        return;
    case copyLastText:
        with_.inserter.placeInPasteboard(with_.controller.lastInsertedText().get());
        return;
    case openHistory:
        with_.windows.showHistory();
        return;
    case openLegal:
        with_.windows.showLegalLookup();
        return;
    case openSettings:
        with_.windows.showSettings(SettingsSection::general);
        return;
    case openOnboarding:
        with_.windows.showOnboarding();
        return;
    case openSuite:
        with_.windows.showSuite();
        return;
    case writeDiagnostics:
        with_.controller.writeDiagnostics();
        showInFileManager(with_.logFile);
        return;
    case runBenchmark:
        with_.windows.showComingLater("Engine-Vergleich",
                                      "Der Vergleich der Spracherkenner kommt mit einer späteren Version.");
        return;
    case runProbe:
        with_.windows.showComingLater("Kettenprüfung",
                                      "Die Prüfung der Textkette kommt mit einer späteren Version.");
        return;
    case runFieldProbe:
        with_.windows.showComingLater("Feldbeobachtung",
                                      "Die Prüfung der Feldbeobachtung kommt mit einer späteren Version.");
        return;
    case openLog:
        openWithDefaultApplication(with_.logFile);
        return;
    case checkLaws:
        with_.legalUpdates.checkNow();
        with_.windows.showSettings(SettingsSection::laws);
        return;
    case checkForUpdates:
        with_.windows.showUpdateWindow();
        return;
    case openAbout:
        with_.windows.showAbout();
        return;
    case quit:
        with_.quit();
        return;
    }
}

/// From our own window the dictation goes to the field that had the focus before.
Task<> StatusItemController::toggleDictation() {
    const bool begins = !with_.controller.phase().get().is(DictationPhase::Kind::recording);
    if (begins && window_ && window_->isActiveWindow()) co_await with_.focusReturn.giveBack();
    with_.controller.toggleDictation();
}

} // namespace querlin
