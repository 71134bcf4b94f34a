#pragma once

#include "desktop/CorrectionWatcher.h"

#include <string>

namespace querlin {

/// The surfaces that a dictation asks for. All calls may be repeated. Main thread.
class DictationWindows {
public:
    virtual ~DictationWindows() = default;
    /// The floating panel that shows the phase.
    virtual void showOverlay() = 0;
    virtual void hideOverlay() = 0;
    /// The window that leads the user through the permissions.
    virtual void showOnboarding() = 0;
    virtual void showCorrectionSuggestion(const CorrectionSuggestion& suggestion) = 0;
    /// Tells why the model's text could not be had.
    virtual void showEnhancementFailureNotice(const std::string& reason) = 0;
};

} // namespace querlin
