#pragma once

#include <QColor>
#include <QFont>
#include <QString>

class QPainter;
class QRectF;

namespace tickwise {

/// How the texts of the list stay readable over any wallpaper.
struct WidgetLegibility
{
    bool halo = false;  ///< two blurred black shadows under each text
    bool boost = false; ///< texts in white, secondary ones a little transparent, whatever the palette is
    bool operator==(const WidgetLegibility &) const = default;
};

/// A line of text on an image of its own: everything that a shadow needs.
struct WidgetTextRun
{
    QString text;
    QFont font; ///< with a pixel size
    QColor color;
    bool tabular = false; ///< digits all as wide as the widest
};

/// The width that the text takes.
double widgetTextWidth(const WidgetTextRun &run);

/// Draws the text, elided to the box, aligned horizontally as asked and centered vertically; with its shadows when
/// `halo`.
void paintWidgetText(QPainter &painter, const QRectF &box, Qt::Alignment alignment, const WidgetTextRun &run,
                     bool halo);

} // namespace tickwise
