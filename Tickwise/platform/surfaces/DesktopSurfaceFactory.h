#pragma once

#include "widget/views/DesktopSurface.h"

#include <QByteArray>

#include <memory>

namespace tickwise {

/// What sets one window on the desktop apart from another.
struct DesktopSurfaceOptions
{
    enum class Pointer
    {
        passesThrough, ///< clicks reach what is below, unless the surface is interactive
        isTaken
    };

    QByteArray name; ///< under which the compositor knows it
    Pointer pointer = Pointer::passesThrough;
};

/// The way in which this session puts a window on the desktop; none where it has no place for one. Needs a
/// QApplication.
std::unique_ptr<DesktopSurface> makeDesktopSurface(DesktopSurfaceOptions options);

} // namespace tickwise
