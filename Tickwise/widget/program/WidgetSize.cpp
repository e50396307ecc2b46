#include "widget/program/WidgetSize.h"

#include "widget/views/WidgetListView.h"

#include <cmath>

namespace tickwise {

namespace {

constexpr int narrow = 196; // points: as much as the header needs; the list is compact in it
constexpr int wide = 364;   // as wide as the desktop overlay
constexpr int fewRows = 3;
constexpr int manyRows = 10;

} // namespace

QString rawValue(WidgetSize size)
{
    switch (size) {
    case WidgetSize::small:
        return QStringLiteral("small");
    case WidgetSize::medium:
        return QStringLiteral("medium");
    case WidgetSize::large:
        return QStringLiteral("large");
    }
    return {};
}

template<>
std::vector<WidgetSize> allCases<WidgetSize>()
{
    return {WidgetSize::small, WidgetSize::medium, WidgetSize::large};
}

int rowCount(WidgetSize size)
{
    return size == WidgetSize::large ? manyRows : fewRows;
}

QSize pointSize(WidgetSize size)
{
    const double list = WidgetListView::heightOf(DesktopOverlayTextSize::normal, rowCount(size));
    return {size == WidgetSize::small ? narrow : wide, int(std::ceil(list)) + 2 * widgetPadding};
}

} // namespace tickwise
