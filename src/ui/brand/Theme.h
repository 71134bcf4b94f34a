#pragma once

#include "foundation/Published.h"
#include "foundation/Registration.h"

#include <cstdint>

#include <QColor>
#include <QPalette>

namespace querlin {

/// Whether surfaces are light or dark, as the user has set it for the desktop.
enum class Appearance : std::uint8_t { light, dark };

/// The colours of our surfaces in both appearances. Main thread.
namespace Theme {

/// The desktop's setting; `light` until it is known. Windows redraw when it changes.
Published<Appearance>& appearance();

/// Text colours: `primary` for content, `secondary` for explanations.
QColor primaryText();
QColor secondaryText();
/// The background of the floating panels.
QColor material();

/// Of windows and controls.
QPalette palette(Appearance appearance);

/// Sets style, palette and font of the whole application; follows `appearance` while the registration is
/// held.
Registration apply();

} // namespace Theme

} // namespace querlin
