#pragma once

#include <QColor>
#include <QPixmap>
#include <QRect>
#include <QRegion>

class QPainter;

namespace tickwise {

/// The rounded panel that a popover's content stands on, with its border and shadow. Corners and edges are drawn once
/// into a small picture and stretched to the panel's size, since filling large round shapes is most of what
/// opening a popover costs.
class PopoverFrame
{
public:
    struct Style
    {
        QColor ground;
        QColor border;
        bool hasShadow = false;
        double scale = 1;            ///< of lengths, by the desktop's text size
        double devicePixelRatio = 1; ///< of the device that is painted on
        bool operator==(const Style &) const = default;
    };

    /// How far the shadow reaches beyond the panel on each side, in logical pixels.
    static int shadowMargin();

    /// The pixels of a panel there, its round corners cut off.
    static QRegion shape(const QRect &panel);

    /// Paints what `exposed` shows of the panel and its shadow; both in logical pixels.
    void paint(QPainter &painter, const QRect &panel, const QRect &exposed, const Style &style);

private:
    void draw(const Style &style);
    QRgb pixel(double fromPanel, double fromShadow) const;

    Style m_style;
    QPixmap m_picture; ///< a panel with a middle of one pixel, in device pixels
    int m_margin = 0;  ///< of the shadow in it
    int m_corner = 0;  ///< what does not stretch at each of its ends
};

} // namespace tickwise
