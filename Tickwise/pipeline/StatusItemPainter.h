#pragma once

#include "pipeline/StatusItem.h"

#include <QColor>
#include <QFont>
#include <QImage>

namespace tickwise {

/// What a status item is drawn with, besides its content.
struct StatusItemStyle
{
    QFont font;        ///< the system's font; its size is lowered where the panel is not high enough
    QColor foreground; ///< the panel's own text color
    bool operator==(const StatusItemStyle &) const = default;
};

/// The style for a panel of that appearance in the desktop's font.
StatusItemStyle statusItemStyle(PanelAppearance appearance);

/// The width in points that the content needs in a panel of that height.
double statusItemWidth(const StatusItemContent &content, const QFont &font, double height);

/// The whole content, `width` by `height` points, at `scale` device pixels a point: text, on its pill if it has one, or
/// the logo.
QImage paintStatusItem(const StatusItemContent &content, const StatusItemStyle &style, double width, double height,
                       int scale);

/// A square of `pixels` with the symbol over the compact price, or the logo.
QImage paintCompactStatusItem(const StatusItemContent &content, const StatusItemStyle &style, int pixels);

/// A square of `pixels` that carries color and trend beside a label: an arrow or the coin's initial on a rounded
/// square, or the logo.
QImage paintStatusBadge(const StatusItemContent &content, const StatusItemStyle &style, int pixels);

} // namespace tickwise
