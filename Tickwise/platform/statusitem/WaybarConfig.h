#pragma once

#include "platform/statusitem/StatusItemHost.h"

#include <QByteArray>

namespace tickwise {

/// The height in points that waybar gives to tray icons when its configuration does not say.
inline constexpr int waybarDefaultIconSize = 16;

/// The tray's `icon-size` in a waybar configuration: JSON with comments, one bar or a list of bars.
int waybarIconSize(const QByteArray &configuration);

/// The same for a running waybar, from the configuration that its command line names or that it finds by itself.
int waybarIconSize(const WatcherProcess &process);

} // namespace tickwise
