#include "widget/program/WidgetMenu.h"

#include <QActionGroup>
#include <QMenu>

namespace tickwise {

namespace {

void addSizes(QMenu &menu, WidgetSize current, const LocalizationBundle &texts, const WidgetMenuActions &actions)
{
    auto *const sizes = new QActionGroup(&menu);
    for (const WidgetSize size : allCases<WidgetSize>()) {
        QAction *const action = menu.addAction(localized(QStringLiteral("widget.size.") + rawValue(size), texts));
        action->setCheckable(true);
        action->setChecked(size == current);
        sizes->addAction(action);
        QObject::connect(action, &QAction::triggered, &menu, [setSize = actions.setSize, size] { setSize(size); });
    }
}

} // namespace

void fillWidgetMenu(QMenu &menu, WidgetSize current, const LocalizationBundle &texts, const WidgetMenuActions &actions)
{
    QObject::connect(menu.addAction(localized(QStringLiteral("menu.open"), texts)), &QAction::triggered, &menu,
                     [open = actions.openApplication] { open(); });
    menu.addSeparator();
    addSizes(menu, current, texts, actions);
    menu.addSeparator();
    QObject::connect(menu.addAction(localized(QStringLiteral("widget.menu.close"), texts)), &QAction::triggered, &menu,
                     [close = actions.close] { close(); });
}

} // namespace tickwise
