#pragma once

#include "ui/brand/Theme.h"

#include <string_view>

#include <QIcon>

/// The picture in the tray. Trays don't colour pictures, and don't tell how light they are: it goes with the
/// desktop's appearance, and a fine edge in the opposite shade keeps it readable on a panel of the other one.
namespace querlin::TrayIcon {

/// The brand mark for no symbol, else the symbol of this name. Drawn for each size that is asked for.
QIcon make(std::string_view symbol, Appearance appearance);

} // namespace querlin::TrayIcon
