#pragma once

#include "ui/brand/Theme.h"

#include <string_view>

#include <QIcon>

/// The tray's icon. Trays neither recolour icons nor say how light they are: the icon follows the desktop's
/// appearance, and a thin outline in the opposite shade keeps it readable on a panel of the other kind.
namespace querlin::TrayIcon {

/// The symbol of this name, or the brand mark if it is empty. Drawn at each requested size.
QIcon make(std::string_view symbol, Appearance appearance);

} // namespace querlin::TrayIcon
