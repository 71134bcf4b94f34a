#pragma once

#include "desktop/CorrectionWatcher.h"
#include "ui/overlay/VisualEffectView.h"

#include <functional>

class QLabel;

namespace querlin {

/// Asks whether a word that the user has corrected should be added to the dictionary.
class CorrectionSuggestionView final : public VisualEffectView {
public:
    /// The callbacks must not destroy this view before they have returned.
    CorrectionSuggestionView(const CorrectionSuggestion& suggestion, std::function<void()> onAccept,
                             std::function<void()> onDismiss);

    QSize sizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    std::function<void()> onDismiss_;
};

} // namespace querlin
