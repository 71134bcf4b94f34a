#pragma once

#include "desktop/CorrectionWatcher.h"
#include "ui/overlay/VisualEffectView.h"

#include <functional>

class QLabel;

namespace querlin {

/// Asks whether a word that the user has put right is to be learnt.
class CorrectionSuggestionView final : public VisualEffectView {
public:
    /// The answers may destroy this view only later than in their call.
    CorrectionSuggestionView(const CorrectionSuggestion& suggestion, std::function<void()> onAccept,
                             std::function<void()> onDismiss);

    QSize sizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    std::function<void()> onDismiss_;
};

} // namespace querlin
