#include "platform/NotifierContent.h"

namespace tickwise {

namespace {

constexpr double panelHeight = 22.0; // points
constexpr int squareSizes[] = {22, 24, 32, 44, 48, 64};

QList<StatusPixmap> widePixmaps(const StatusItemContent &content, const StatusItemStyle &style, int scale,
                                StatusItemWidth &widths)
{
    const double needed = statusItemWidth(content, style.font, panelHeight);
    const double width = content.logo ? needed : widths.widthFor(content.text.size(), needed);
    QList<StatusPixmap> pixmaps{statusPixmap(paintStatusItem(content, style, width, panelHeight, 1))};
    // These hosts take the largest entry they get, and would blur a double one on a single-density screen.
    if (scale > 1)
        pixmaps << statusPixmap(paintStatusItem(content, style, width, panelHeight, 2));
    return pixmaps;
}

using SquarePainter = QImage (*)(const StatusItemContent &, const StatusItemStyle &, int);

QList<StatusPixmap> squarePixmaps(const StatusItemContent &content, const StatusItemStyle &style, SquarePainter paint)
{
    QList<StatusPixmap> pixmaps;
    for (int size : squareSizes)
        pixmaps << statusPixmap(paint(content, style, size));
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
    if (content.logo)
        return {};
    const QString text = content.text.trimmed();
    switch (content.trend) {
    case StatusTrend::up:
        return text + QStringLiteral(" ▲");
    case StatusTrend::down:
        return text + QStringLiteral(" ▼");
    case StatusTrend::none:
        break;
    }
    return text;
}

StatusNotifierContent notifierContent(const StatusItemContent &content, const StatusItemStyle &style,
                                      StatusItemPresentation presentation, int scale, StatusItemWidth &widths)
{
    StatusNotifierContent item{content.title, {content.toolTipTitle, toolTipMarkup(content.toolTipBody)}, {}, {}, {}};
    if (presentation == StatusItemPresentation::wideSni) {
        item.pixmaps = widePixmaps(content, style, scale, widths);
    } else if (presentation == StatusItemPresentation::sniWithLabel) {
        item.pixmaps = squarePixmaps(content, style, paintStatusBadge);
        item.label = statusLabel(content);
        item.labelGuide = labelGuide(*item.label);
    } else {
        item.pixmaps = squarePixmaps(content, style, paintCompactStatusItem);
    }
    return item;
}

} // namespace tickwise
