#pragma once

#include <QString>

class QWidget;

namespace tickwise {

/// Shows the window, also one that the user has minimized, above the others and asks the desktop for the focus.
void bringToFront(QWidget &window);

/// Raises every window that is open, without those that the user has minimized. The desktop lets a program raise itself
/// for a token that it gave; an empty one is none.
void bringOpenWindowsToFront(const QString &token);

/// The token that a launcher started this process with; programs that are started later do not inherit it.
QString takeActivationToken();

} // namespace tickwise
