#pragma once

#include "desktop/FocusReturn.h"
#include "desktop/Surfaces.h"
#include "dictation/DictationController.h"
#include "dictation/DictationWindows.h"
#include "foundation/Published.h"
#include "foundation/Runtime.h"
#include "legal/LegalUpdateService.h"
#include "state/AppSettings.h"
#include "state/UsageStatistics.h"
#include "ui/windows/SetupFinding.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace querlin {

/// A page of the settings window.
enum class SettingsSection : std::uint8_t {
    general,
    audio,
    transcription,
    enhancement,
    profiles,
    blocks,
    vocabulary,
    laws,
    privacy,
    statistics,
    permissions
};

/// What the windows show and work with. All of it outlives the coordinator.
struct WindowSources {
    Runtime runtime;
    AppSettings& settings;
    UsageStatistics& statistics;
    LegalUpdateService& legalUpdates;
    LegalCorpus& corpus;
    FocusReturn& focusReturn;
    Surfaces& surfaces;
    /// The current state of everything that the program needs.
    std::function<std::vector<SetupFinding>()> findings;
};

/// Owns every window and floating panel: makes each at its first use, keeps it, and brings it to the front.
/// Also keeps the one message that outlives a dictation. Main thread.
class WindowCoordinator final : public DictationWindows {
public:
    explicit WindowCoordinator(WindowSources sources);
    ~WindowCoordinator() override;
    WindowCoordinator(const WindowCoordinator&) = delete;
    WindowCoordinator& operator=(const WindowCoordinator&) = delete;

    /// Set after construction, because the two need each other; null again before the controller is
    /// destroyed.
    void setController(DictationController* controller);

    void showSettings(SettingsSection section);
    void showOnboarding() override;
    void showAbout();
    void showLegalLookup();
    void showHistory();
    void showUpdateWindow();
    void showSuite();
    /// Says that something comes with a later version.
    void showComingLater(const std::string& title, const std::string& text);

    /// Makes the overlay ahead of time, so that the first dictation doesn't wait for it.
    void prepareOverlay();
    void showOverlay() override;
    void hideOverlay() override;
    void showCorrectionSuggestion(const CorrectionSuggestion& suggestion) override;
    void dismissSuggestion();

    /// Shows a notice in the status menu for 30 seconds.
    void showEnhancementFailureNotice(const std::string& reason) override;
    void clearNotice();
    const Published<std::optional<std::string>>& lastNotice() const { return lastNotice_; }

private:
    struct Windows;

    void accept(const CorrectionSuggestion& suggestion);
    void finishOnboarding();

    WindowSources sources_;
    DictationController* controller_ = nullptr;
    Published<std::optional<std::string>> lastNotice_;
    Registration noticeReset_;
    Registration suggestionTimeout_;
    std::unique_ptr<Windows> windows_;
};

} // namespace querlin
