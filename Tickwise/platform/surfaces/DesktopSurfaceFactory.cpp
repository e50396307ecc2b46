#include "platform/surfaces/DesktopSurfaceFactory.h"

#include "platform/surfaces/LayerDesktopSurface.h"
#include "platform/surfaces/X11DesktopSurface.h"

namespace tickwise {

std::unique_ptr<DesktopSurface> makeDesktopSurface(DesktopSurfaceOptions options)
{
    if (auto shell = LayerShell::bind())
        return std::make_unique<LayerDesktopSurface>(std::move(shell), std::move(options));
    auto connection = X11Desktop::open();
    if (connection && connection->keepsWindowsBelow())
        return std::make_unique<X11DesktopSurface>(std::move(connection), options);
    return nullptr;
}

} // namespace tickwise
