#include "ui/controls/SecondaryLabel.h"

#include "ui/controls/Look.h"

#include <QEvent>
#include <QGuiApplication>

namespace tickwise {

SecondaryLabel::SecondaryLabel(QWidget *parent)
    : QLabel(parent)
{
    takeColor();
}

void SecondaryLabel::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ParentChange)
        takeColor();
    QLabel::changeEvent(event);
}

void SecondaryLabel::takeColor()
{
    const QColor color = look::secondaryText(parentWidget() ? parentWidget()->palette() : QGuiApplication::palette());
    if (palette().color(QPalette::WindowText) == color)
        return;
    QPalette own;
    own.setColor(QPalette::WindowText, color);
    setPalette(own);
}

} // namespace tickwise
