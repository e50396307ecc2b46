#include "overlay/WallpaperLegibility.h"

#include <algorithm>
#include <cmath>

namespace tickwise {

namespace {

constexpr double leastWhileAdjusting = 0.6;
constexpr double leastWithoutHalo = 0.2;

double usable(double opacity)
{
    return std::isfinite(opacity) ? std::clamp(opacity, 0.0, 1.0) : 0;
}

} // namespace

double backdropOpacity(const DesktopOverlayGround &ground)
{
    if (!ground.isTranslucent)
        return 1;
    const double opacity = usable(ground.backgroundOpacity);
    return ground.isAdjusting ? std::max(opacity, leastWhileAdjusting) : opacity;
}

WidgetLegibility wallpaperLegibility(const DesktopOverlayGround &ground)
{
    const bool active =
        ground.isTranslucent && !ground.isAdjusting && usable(ground.backgroundOpacity) < leastWithoutHalo;
    return {.halo = active, .boost = active};
}

} // namespace tickwise
