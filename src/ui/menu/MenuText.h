#pragma once

#include <string_view>

#include <QKeySequence>
#include <QString>

/// Labels of entries in menus and on buttons.
namespace querlin::MenuText {

/// A title on one line of limited length; a longer one ends in "…". "&" is escaped.
QString label(std::string_view title);

/// The key of an entry, combined with Ctrl.
QKeySequence shortcut(char key);

} // namespace querlin::MenuText
