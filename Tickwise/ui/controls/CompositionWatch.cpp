#include "ui/controls/CompositionWatch.h"

#include <QCoreApplication>
#include <QInputMethodEvent>

namespace tickwise {

CompositionWatch::CompositionWatch(const QWidget &control)
    : m_control(control)
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool CompositionWatch::isInside(const QObject *watched) const
{
    return watched == &m_control ||
           (watched->isWidgetType() && m_control.isAncestorOf(static_cast<const QWidget *>(watched)));
}

bool CompositionWatch::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::InputMethod && isInside(watched))
        m_composer = static_cast<const QInputMethodEvent *>(event)->preeditString().isEmpty() ? nullptr : watched;
    else if (event->type() == QEvent::FocusOut && watched == m_composer)
        m_composer = nullptr;
    return QObject::eventFilter(watched, event);
}

} // namespace tickwise
