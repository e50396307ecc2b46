#include "widget/views/AccessibleWindow.h"

#include <QAccessibleWidget>

namespace tickwise {

namespace {

QAccessibleInterface *makeWindowInterface(const QString &, QObject *object)
{
    auto *const window = qobject_cast<AccessibleWindow *>(object);
    return window ? new QAccessibleWidget(window, QAccessible::Window) : nullptr;
}

} // namespace

AccessibleWindow::AccessibleWindow(QWidget *parent, Qt::WindowFlags flags)
    : QWidget(parent, flags)
{
    QAccessible::installFactory(makeWindowInterface); // a second time changes nothing
}

} // namespace tickwise
