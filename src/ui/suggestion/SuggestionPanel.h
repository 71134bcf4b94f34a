#pragma once

#include "ui/overlay/FloatingPanel.h"

namespace querlin {

/// A floating panel with something to click on. It comes without the focus, and takes it from whoever clicks.
class SuggestionPanel final : public FloatingPanel {
public:
    explicit SuggestionPanel(VisualEffectView* content) :
        FloatingPanel(content, Behaviour::asks, QStringLiteral("Querlin Vorschlag")) {}
};

} // namespace querlin
