#pragma once

#include "platform/dbus/ColorSchemePortal.h"

#include <QPalette>

namespace tickwise {

/// A dark palette for windows in Qt's own style.
QPalette darkWindowPalette();

/// Makes the windows dark where the desktop prefers that and Qt does not follow: Qt 6.4 reads the palettes of KDE's
/// settings only. A style that brings a palette of its own, and a desktop whose palette is dark, are left alone.
class WindowPalette : public QObject
{
    Q_OBJECT

public:
    /// The bus outlives the object.
    explicit WindowPalette(SessionBus &bus);

private:
    void update();

    ColorSchemePortal m_colorScheme;
    bool m_isDark = false; ///< by us
};

} // namespace tickwise
