#include "ui/controls/WheelGuard.h"

#include <QEvent>
#include <QWidget>

namespace tickwise {

WheelGuard::WheelGuard(QWidget &control)
    : QObject(&control)
{
    control.installEventFilter(this);
}

void WheelGuard::guard(QWidget &control)
{
    control.setFocusPolicy(Qt::StrongFocus);
    new WheelGuard(control);
}

bool WheelGuard::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Wheel || static_cast<const QWidget *>(watched)->hasFocus())
        return QObject::eventFilter(watched, event);
    event->ignore();
    return true;
}

} // namespace tickwise
