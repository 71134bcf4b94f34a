#pragma once

#include <string_view>

#include <QKeySequence>
#include <QString>

/// How entries are written in menus and on buttons.
namespace querlin::MenuText {

/// A title on one line of bearable length; what is too long ends in "…". An "&" stays one.
QString label(std::string_view title);

/// The key of an entry, with Ctrl.
QKeySequence shortcut(char key);

} // namespace querlin::MenuText
