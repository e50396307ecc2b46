#include "platform/surfaces/DesktopPopoverSurface.h"

#include "platform/surfaces/LayerPopoverSurface.h"
#include "platform/surfaces/WindowPopoverSurface.h"

namespace tickwise {

std::unique_ptr<PopoverSurface> makePopoverSurface()
{
    if (auto shell = LayerShell::bind())
        return std::make_unique<LayerPopoverSurface>(std::move(shell));
    return std::make_unique<WindowPopoverSurface>();
}

} // namespace tickwise
