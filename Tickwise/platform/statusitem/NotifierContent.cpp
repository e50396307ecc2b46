#include "platform/statusitem/NotifierContent.h"

#include "support/Markup.h"

namespace tickwise {

namespace {

QList<StatusPixmap> widePixmaps(const StatusItemContent &content, const StatusItemStyle &style,
                                const ItemFormat &format, int scale, StatusItemWidth &widths)
{
    QList<StatusPixmap> pixmaps;
    for (int height : format.heights) {
        const double needed = statusItemWidth(content, style.font, height);
        const double width = content.logo ? needed : widths.widthFor(style.font, height, content.text.size(), needed);
        pixmaps << statusPixmap(paintStatusItem(content, style, width, height, 1), format.premultiplied);
        // Some hosts take the largest entry they get, and would blur a double one on a single-density screen.
        if (scale > 1)
            pixmaps << statusPixmap(paintStatusItem(content, style, width, height, 2), format.premultiplied);
    }
    return pixmaps;
}

using SquarePainter = QImage (*)(const StatusItemContent &, const StatusItemStyle &, int);

QList<StatusPixmap> squarePixmaps(const StatusItemContent &content, const StatusItemStyle &style,
                                  const ItemFormat &format, SquarePainter paint)
{
    QList<StatusPixmap> pixmaps;
    for (int size : format.heights)
        pixmaps << statusPixmap(paint(content, style, size), format.premultiplied);
    return pixmaps;
}

/// The label with every digit at its widest.
QString labelGuide(QString label)
{
    for (QChar &character : label) {
        if (character.isDigit())
            character = u'8';
    }
    return label;
}

} // namespace

QString statusLabel(const StatusItemContent &content)
{
    return content.logo ? QString() : content.text.trimmed();
}

StatusNotifierContent notifierContent(const StatusItemContent &content, const StatusItemStyle &style,
                                      StatusItemPresentation presentation, const ItemFormat &format, int scale,
                                      StatusItemWidth &widths)
{
    StatusNotifierContent item{
        content.title, {content.toolTipTitle, plainTextMarkup(content.toolTipBody, format.toolTipBreak)}, {}, {}, {}};
    if (presentation == StatusItemPresentation::wideSni) {
        item.pixmaps = widePixmaps(content, style, format, scale, widths);
    } else if (presentation == StatusItemPresentation::sniWithLabel) {
        item.pixmaps = squarePixmaps(content, style, format, paintStatusBadge);
        item.label = statusLabel(content);
        item.labelGuide = labelGuide(*item.label);
    } else {
        item.pixmaps = squarePixmaps(content, style, format, paintCompactStatusItem);
    }
    return item;
}

} // namespace tickwise
