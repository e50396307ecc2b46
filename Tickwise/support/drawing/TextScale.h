#pragma once

namespace tickwise {

/// How much larger than usual the desktop draws text: its logical resolution over 96 dots an inch.
double textScale();

} // namespace tickwise
