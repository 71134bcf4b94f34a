#pragma once

#include "ui/overlay/FloatingPanel.h"

namespace querlin {

/// The window of the overlay.
class OverlayPanel final : public FloatingPanel {
public:
    OverlayPanel(VisualEffectView* content, Surfaces& surfaces) :
        FloatingPanel(content, Behaviour::onlyShows, QStringLiteral("Querlin Overlay"), surfaces) {}
};

} // namespace querlin
