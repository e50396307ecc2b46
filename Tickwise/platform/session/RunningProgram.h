#pragma once

#include <QString>

namespace tickwise {

/// The AppImage that this program runs from; empty: none. The variables that name it are inherited by every program
/// that one from an AppImage starts, so they count only where our own executable lies inside the image.
QString runningAppImage();

/// The file that starts this program: the AppImage it runs from, or its own.
QString runningProgram();

/// True inside Flatpak or Snap, where files in the user's configuration folder start nothing. A variable inherited from
/// another snap does not count.
bool runsInSandbox();

} // namespace tickwise
