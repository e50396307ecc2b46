#pragma once

#include "ui/popover/PopoverSurface.h"

#include <memory>

namespace tickwise {

/// The way in which this desktop shows a popover. Needs a QApplication.
std::unique_ptr<PopoverSurface> makePopoverSurface();

} // namespace tickwise
