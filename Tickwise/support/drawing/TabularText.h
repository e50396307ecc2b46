#pragma once

#include <QFontMetricsF>
#include <QString>

class QPainter;

namespace tickwise {

/// Text whose digits are all as wide as the widest digit, so that a changing number does not move what follows it.
class TabularText
{
public:
    /// `font` must have a pixel size; everything is in its pixels.
    explicit TabularText(const QFont &font);

    double width(const QString &text) const;
    double capHeight() const { return m_metrics.capHeight(); }

    /// Draws with the painter's pen; `x` is the left end, `baseline` the line under the digits.
    void draw(QPainter &painter, double x, double baseline, const QString &text) const;

private:
    double advanceOf(const QString &run) const;

    QFont m_font;
    QFontMetricsF m_metrics;
    double m_cell;
};

} // namespace tickwise
