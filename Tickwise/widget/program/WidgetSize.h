#pragma once

#include "support/RawValue.h"

#include <QSize>

namespace tickwise {

/// The sizes of the widget; stored by raw value ("small", "medium", "large").
enum class WidgetSize
{
    small,
    medium,
    large
};

QString rawValue(WidgetSize size);

template<>
std::vector<WidgetSize> allCases<WidgetSize>();

/// How many coins fit; the list is cut below them.
int rowCount(WidgetSize size);

/// The space between the widget's edge and its list, in points.
inline constexpr int widgetPadding = 14;

/// Width and height of the widget, in points.
QSize pointSize(WidgetSize size);

} // namespace tickwise
