#pragma once

#include <QFontMetricsF>
#include <QPointF>
#include <QRawFont>
#include <QString>

#include <unordered_map>
#include <vector>

class QPainter;

namespace tickwise {

/// Text whose digits are all as wide as the widest digit, so that a changing number does not move what follows it. What
/// it has shaped is kept, so that another number takes no shaping. Main thread only.
class TabularText
{
public:
    /// `font` must have a pixel size; everything is in its pixels.
    explicit TabularText(const QFont &font);

    double width(QStringView text) const;
    double capHeight() const { return m_metrics.capHeight(); }

    /// Draws with the painter's pen; `x` is the left end, `baseline` the line under the digits.
    void draw(QPainter &painter, double x, double baseline, QStringView text) const;

    struct Shape;
    /// What is drawn for itself: a digit, or all that stands between two digits. It is valid until the next call.
    struct Part
    {
        QStringView text;
        double left = 0;
        const Shape *shape = nullptr;
    };
    /// The parts of the text that starts at `x`.
    std::vector<Part> parts(QStringView text, double x) const;

    /// Glyphs of one font, their places from the part's left end on the baseline.
    struct Glyphs
    {
        std::size_t font = 0;
        std::vector<quint32> indexes;
        std::vector<QPointF> places;
    };
    /// A part that has been shaped.
    struct Shape
    {
        double advance = 0;
        std::vector<Glyphs> glyphs;
    };

private:
    void trimShapes() const;
    double advanceOf(QStringView part) const;
    const Shape &shapeOf(QStringView part) const;
    Shape shaped(const QString &part) const;
    std::size_t indexOf(const QRawFont &font) const;
    void drawGlyphs(QPainter &painter, const Glyphs &glyphs) const;

    QFont m_font;
    QFontMetricsF m_metrics;
    double m_cell;
    mutable std::unordered_map<QString, Shape> m_shapes;
    mutable std::vector<QRawFont> m_rawFonts; ///< the font and those that stand in for characters it lacks
};

} // namespace tickwise
