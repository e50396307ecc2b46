#pragma once

#include "support/drawing/TabularText.h"
#include "widget/views/TextHalo.h"

#include <QColor>
#include <QFont>
#include <QRectF>

#include <memory>
#include <vector>

namespace tickwise {

/// A font of the list with what its texts are measured and drawn by.
struct WidgetFace
{
    /// `sized` must have a pixel size.
    explicit WidgetFace(const QFont &sized);

    double width(const QString &text, bool isTabular) const;

    QFont font;
    QFontMetricsF metrics;
    double ascent;
    double descent;
    TabularText tabular;
    TextHalo halo;
};

/// One line of text as the list asks for it: elided to its box, aligned horizontally as asked and centered vertically.
struct WidgetText
{
    QString text;
    std::shared_ptr<const WidgetFace> face;
    QColor color;
    bool isTabular = false; ///< digits all as wide as the widest
    QRectF box;
    Qt::AlignmentFlag alignment = Qt::AlignLeft;
    bool operator==(const WidgetText &) const = default;
};

/// A text that has been measured and has its place.
class PlacedWidgetText
{
public:
    explicit PlacedWidgetText(const WidgetText &text);

    /// Gives it other values. It is measured anew only as far as these are others. Returns the area that looks
    /// different then.
    QRectF replace(const WidgetText &text, bool halo);
    /// The area that drawing it may cover.
    QRectF ink(bool halo) const;
    /// Draws it, with its shadows when `halo`.
    void paint(QPainter &painter, bool halo) const;

private:
    /// All that it looks like.
    struct Look
    {
        QString shown;
        QColor color;
        double width = 0;
        double left = 0;
        double baseline = 0;
        bool operator==(const Look &) const = default;
    };

    void measure();
    Look placed() const;

    WidgetText m_text;
    double m_wholeWidth = 0; ///< before it is elided
    Look m_look;
};

/// Makes the placed texts those that are asked for, and returns the area that looks different then.
QRectF replaceTexts(std::vector<PlacedWidgetText> &placed, const std::vector<WidgetText> &asked, bool halo);

} // namespace tickwise
