#pragma once

#include "support/Localization.h"
#include "widget/program/WidgetSize.h"

#include <functional>

class QMenu;

namespace tickwise {

/// What the widget's menu does.
struct WidgetMenuActions
{
    std::function<void()> openApplication;
    std::function<void(WidgetSize size)> setSize;
    std::function<void()> close;
};

/// Gives the menu the widget's entries: the application, the sizes with the current one marked, the end.
void fillWidgetMenu(QMenu &menu, WidgetSize current, const LocalizationBundle &texts, const WidgetMenuActions &actions);

} // namespace tickwise
