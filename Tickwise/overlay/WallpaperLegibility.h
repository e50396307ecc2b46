#pragma once

#include "widget/views/TextHalo.h"

namespace tickwise {

/// How the desktop overlay lies on the desktop.
struct DesktopOverlayGround
{
    double backgroundOpacity = 1; ///< as it is set; what is not finite counts as 0, as in the settings window
    bool isAdjusting = false;
    bool isTranslucent = true; ///< the desktop can be seen through what is not painted
};

/// The opacity of the backdrop, 0...1. It is higher while the overlay is adjusted, so that its edges are seen.
double backdropOpacity(const DesktopOverlayGround &ground);

/// Texts with halos while the backdrop is nearly transparent.
WidgetLegibility wallpaperLegibility(const DesktopOverlayGround &ground);

} // namespace tickwise
