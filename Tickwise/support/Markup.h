#pragma once

#include <QString>

namespace tickwise {

/// Plain text lines as the simple markup of tooltips and notification bodies.
QString plainTextMarkup(const QString &lines);

/// A tooltip with a bold title over plain text lines; empty where both are.
QString toolTipMarkup(const QString &title, const QString &lines);

} // namespace tickwise
