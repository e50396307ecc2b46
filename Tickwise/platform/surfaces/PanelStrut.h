#pragma once

#include <QRect>

#include <cstdint>
#include <vector>

namespace tickwise {

/// The monitor without the part that a panel keeps for itself, where that is on this monitor. `strut` is the panel's
/// _NET_WM_STRUT_PARTIAL: depths from the left, right, top and bottom edge of the whole screen, then the first and the
/// last coordinate along each of these. One with fewer numbers keeps nothing.
QRect withoutStrut(QRect monitor, const std::vector<uint32_t> &strut, QSize wholeScreen);

} // namespace tickwise
