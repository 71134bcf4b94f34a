#pragma once

#include "ui/overlay/FloatingPanel.h"

namespace querlin {

/// The window of the overlay.
class OverlayPanel final : public FloatingPanel {
public:
    explicit OverlayPanel(VisualEffectView* content) :
        FloatingPanel(content, Behaviour::onlyShows, QStringLiteral("Querlin Overlay")) {}
};

} // namespace querlin
