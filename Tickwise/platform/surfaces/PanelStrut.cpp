#include "platform/surfaces/PanelStrut.h"

#include <algorithm>

namespace tickwise {

QRect withoutStrut(QRect monitor, const std::vector<uint32_t> &strut, QSize wholeScreen)
{
    constexpr std::size_t length = 12;
    if (strut.size() < length)
        return monitor;
    const auto number = [&strut](std::size_t index) { return int(std::min<uint32_t>(strut[index], INT16_MAX)); };
    const auto crosses = [&](std::size_t edge, int first, int last) {
        return number(edge) > 0 && number(4 + 2 * edge) <= last && number(5 + 2 * edge) >= first;
    };
    QRect left = monitor;
    if (crosses(0, monitor.top(), monitor.bottom()))
        left.setLeft(std::max(left.left(), number(0)));
    if (crosses(1, monitor.top(), monitor.bottom()))
        left.setRight(std::min(left.right(), wholeScreen.width() - number(1) - 1));
    if (crosses(2, monitor.left(), monitor.right()))
        left.setTop(std::max(left.top(), number(2)));
    if (crosses(3, monitor.left(), monitor.right()))
        left.setBottom(std::min(left.bottom(), wholeScreen.height() - number(3) - 1));
    // A panel of another monitor may be as deep as all of this one.
    return left.isEmpty() ? monitor : left;
}

} // namespace tickwise
