#pragma once

#include "settings/AppSettings.h"
#include "settings/SettingsDataStorage.h"
#include "widget/program/WidgetSize.h"

namespace tickwise {

/// What the widget remembers of itself. The application's settings are none of its own.
struct WidgetPreferences
{
    WidgetSize size = WidgetSize::medium;
    std::optional<DesktopOverlayOrigin> topLeft; ///< in points, y grows upwards; none: not moved yet
    bool operator==(const WidgetPreferences &) const = default;
};

/// The stored preferences; a field that is missing or no value falls back to its default.
WidgetPreferences loadWidgetPreferences(SettingsDataStorage &storage);

/// A failure is one log line.
void saveWidgetPreferences(SettingsDataStorage &storage, const WidgetPreferences &preferences);

} // namespace tickwise
