#pragma once

#include <QString>

namespace tickwise {

/// What ends a line in a markup.
enum class LineBreak
{
    element, ///< <br/>
    newline  ///< as it is: Pango's markup
};

/// Plain text lines as the simple markup of tooltips and notification bodies.
QString plainTextMarkup(const QString &lines, LineBreak lineBreak = LineBreak::element);

/// A tooltip with a bold title over plain text lines; empty where both are.
QString toolTipMarkup(const QString &title, const QString &lines);

} // namespace tickwise
