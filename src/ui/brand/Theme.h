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

/// What the desktop wishes; set by who knows, `light` at first. Windows redraw when it changes.
Published<Appearance>& appearance();

/// Of text: `primary` for what is read, `secondary` for what explains it.
QColor primaryText();
QColor secondaryText();
/// The background of the floating panels.
QColor material();

/// Of windows and controls.
QPalette palette(Appearance appearance);

/// Style, palette and font of the whole application; follows `appearance` for as long as it is held.
Registration apply();

} // namespace Theme

} // namespace querlin
