#pragma once

#include "ui/overlay/FloatingPanel.h"

namespace querlin {

/// A floating panel with buttons. It appears without the focus and gets it by a click only.
class SuggestionPanel final : public FloatingPanel {
public:
    SuggestionPanel(VisualEffectView* content, Surfaces& surfaces) :
        FloatingPanel(content, Behaviour::asks, QStringLiteral("Querlin Vorschlag"), surfaces) {}
};

} // namespace querlin
