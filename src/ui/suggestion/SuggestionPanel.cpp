#include "ui/suggestion/SuggestionPanel.h"

namespace querlin {

SuggestionPanel::SuggestionPanel(VisualEffectView* content) :
    FloatingPanel(content, Behaviour::asks, QStringLiteral("Querlin Vorschlag")) {}

} // namespace querlin
