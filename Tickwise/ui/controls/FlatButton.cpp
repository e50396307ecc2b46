#include "ui/controls/FlatButton.h"

#include <QKeyEvent>

namespace tickwise {

void FlatButton::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter)
        return QAbstractButton::keyPressEvent(event);
    if (!event->isAutoRepeat())
        click();
}

} // namespace tickwise
