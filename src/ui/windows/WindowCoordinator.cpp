#include "ui/windows/WindowCoordinator.h"

#include "state/DiagnosticsLog.h"
#include "ui/brand/Brand.h"
#include "ui/brand/BrandMark.h"
#include "ui/display/BringToFront.h"
#include "ui/lookup/LegalLookupView.h"
#include "ui/overlay/OverlayPanel.h"
#include "ui/overlay/OverlayView.h"
#include "ui/suggestion/CorrectionSuggestionView.h"
#include "ui/suggestion/SuggestionPanel.h"
#include "ui/windows/ComingLaterView.h"
#include "ui/windows/SetupView.h"

#include <map>

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr auto noticeTime = std::chrono::seconds(30);
constexpr auto suggestionTime = std::chrono::seconds(20);

/// Title, size and buttons of a window.
struct Frame {
    std::string title;
    QSize size;
    bool isResizable = false;
};

void frame(QWidget& window, const Frame& frame) {
    Qt::WindowFlags flags = Qt::Window | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                            Qt::WindowCloseButtonHint | Qt::WindowMinimizeButtonHint |
                            Qt::CustomizeWindowHint;
    if (frame.isResizable) flags |= Qt::WindowMaximizeButtonHint;
    window.setWindowFlags(flags);
    window.setWindowTitle(Brand::text(frame.title));
    window.setWindowIcon(BrandMark::windowIcon());
    if (frame.isResizable) {
        window.resize(frame.size);
    } else {
        window.setFixedSize(frame.size);
    }
    centre(window);
}

std::string ofProduct(std::string_view title) { return fmt::format(fmt::runtime(title), Brand::productName); }

} // namespace

/// At most one of each kind. A closed window keeps its content.
struct WindowCoordinator::Windows {
    using Pointer = std::unique_ptr<QWidget>;

    /// Brings the window to the front, and makes it first if needed.
    template<class Window, class Make>
    void show(std::unique_ptr<Window>& window, const Frame& wanted, Make make) {
        if (!window) {
            window = make();
            frame(*window, wanted);
        }
        bringToFront(*window, surfaces);
    }
    void showComingLater(Pointer& window, const Frame& wanted, const std::string& text) {
        show(window, wanted, [&] { return std::make_unique<ComingLaterView>(text); });
    }

    explicit Windows(Surfaces& ofServer) : surfaces(ofServer) {}

    Surfaces& surfaces;
    Pointer settings;
    Pointer onboarding;
    Pointer about;
    Pointer history;
    Pointer update;
    Pointer suite;
    std::unique_ptr<LegalLookupView> legal;
    std::map<std::string, Pointer> comingLater;
    std::unique_ptr<OverlayPanel> overlay;
    std::unique_ptr<SuggestionPanel> suggestion;
};

WindowCoordinator::WindowCoordinator(WindowSources sources) :
    sources_(std::move(sources)), windows_(std::make_unique<Windows>(sources_.surfaces)) {}

WindowCoordinator::~WindowCoordinator() = default;

void WindowCoordinator::setController(DictationController* controller) {
    controller_ = controller;
    if (controller) return;
    windows_->overlay.reset(); // Both read from the controller.
    windows_->legal.reset();
}

// Windows

void WindowCoordinator::showSettings(SettingsSection /*section*/) {
    windows_->showComingLater(windows_->settings,
                              {.title = ofProduct("{} – Einstellungen"), .size = {800, 580}},
                              fmt::format("Die Einstellungen kommen mit der nächsten Version. Bis dahin "
                                          "gelten die Vorgaben: gehalten wird {}, "
                                          "geschrieben im Aktenstil.",
                                          sources_.settings.hotkey.get().displayName()));
}

void WindowCoordinator::showOnboarding() {
    windows_->show(windows_->onboarding, {.title = ofProduct("{} einrichten"), .size = {620, 720}}, [this] {
        return std::make_unique<SetupView>(sources_.findings, [this] { finishOnboarding(); });
    });
}

/// Called from the window's own button, so its deletion is deferred.
void WindowCoordinator::finishOnboarding() {
    sources_.settings.hasCompletedOnboarding.set(true);
    windows_->onboarding->close();
    windows_->onboarding.release()->deleteLater();
    if (controller_) controller_->installHotkey();
}

void WindowCoordinator::showAbout() {
    windows_->showComingLater(
        windows_->about, {.title = ofProduct("Über {}"), .size = {400, 320}},
        fmt::format("{} {}\n\nSprechen · Erkennen · Einfügen", Brand::productName, Product::version));
}

void WindowCoordinator::showLegalLookup() {
    windows_->show(
        windows_->legal,
        {.title = "Gesetze nachschlagen – BGB und FamFG", .size = {820, 520}, .isResizable = true}, [this] {
            return std::make_unique<LegalLookupView>(LegalLookupSources{.runtime = sources_.runtime,
                                                                        .settings = sources_.settings,
                                                                        .corpus = sources_.corpus,
                                                                        .updates = sources_.legalUpdates,
                                                                        .controller = controller_,
                                                                        .focusReturn = sources_.focusReturn});
        });
}

void WindowCoordinator::showHistory() {
    if (!controller_) return;
    windows_->showComingLater(
        windows_->history, {.title = "Diktatverlauf", .size = {780, 520}, .isResizable = true},
        "Das Fenster des Diktatverlaufs kommt mit der nächsten Version. Aufgezeichnet wird er "
        "schon: Was Sie diktieren, geht nicht verloren.");
}

void WindowCoordinator::showUpdateWindow() {
    windows_->showComingLater(
        windows_->update, {.title = ofProduct("{} aktualisieren"), .size = {460, 320}},
        "Die Suche nach neuen Versionen kommt mit der nächsten Version. Bis dahin kommen sie über "
        "die Paketverwaltung.");
}

void WindowCoordinator::showSuite() {
    windows_->showComingLater(
        windows_->suite, {.title = fmt::format("Die {} kennenlernen", Brand::suiteName), .size = {460, 360}},
        fmt::format("{} gehört zur {}: Werkzeuge für dieselbe Arbeit – alle auf dem eigenen Rechner. "
                    "Mehr darüber kommt mit der nächsten Version.",
                    Brand::productName, Brand::suiteName));
}

void WindowCoordinator::showComingLater(const std::string& title, const std::string& text) {
    windows_->showComingLater(windows_->comingLater[title], {.title = title, .size = {460, 320}}, text);
}

// Panels

void WindowCoordinator::prepareOverlay() {
    if (!controller_ || windows_->overlay) return;
    windows_->overlay =
        std::make_unique<OverlayPanel>(new OverlayView(*controller_, sources_.settings), sources_.surfaces);
    windows_->overlay->positionAtBottomCenter();
    windows_->overlay->winId();
    windows_->overlay->grab(); // Loads the fonts and does the layout.
}

void WindowCoordinator::showOverlay() {
    prepareOverlay();
    if (!windows_->overlay) return;
    windows_->overlay->positionAtBottomCenter();
    windows_->overlay->orderFront();
}

void WindowCoordinator::hideOverlay() {
    if (windows_->overlay) windows_->overlay->orderOut();
}

void WindowCoordinator::showCorrectionSuggestion(const CorrectionSuggestion& suggestion) {
    dismissSuggestion();
    auto* view = new CorrectionSuggestionView(
        suggestion, [this, suggestion] { accept(suggestion); }, [this] { dismissSuggestion(); });
    windows_->suggestion = std::make_unique<SuggestionPanel>(view, sources_.surfaces);
    windows_->suggestion->positionAtBottomCenter();
    windows_->suggestion->orderFront();
    suggestionTimeout_ = sources_.runtime.mainQueue.after(suggestionTime, [this] { dismissSuggestion(); });
}

void WindowCoordinator::accept(const CorrectionSuggestion& suggestion) {
    sources_.settings.addUserTerm(suggestion.corrected);
    DiagnosticsLog::note("learn", "Ein korrigiertes Wort ins Wörterbuch übernommen.");
    dismissSuggestion();
}

/// May be called from one of the panel's own buttons, so its deletion is deferred.
void WindowCoordinator::dismissSuggestion() {
    suggestionTimeout_.reset();
    if (!windows_->suggestion) return;
    windows_->suggestion->orderOut();
    windows_->suggestion.release()->deleteLater();
}

// The notice

void WindowCoordinator::showEnhancementFailureNotice(const std::string& reason) {
    lastNotice_.set(reason);
    noticeReset_ = sources_.runtime.mainQueue.after(noticeTime, [this] { lastNotice_.set(std::nullopt); });
}

void WindowCoordinator::clearNotice() {
    noticeReset_.reset();
    lastNotice_.set(std::nullopt);
}

} // namespace querlin
