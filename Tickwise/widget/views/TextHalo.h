#pragma once

#include <QCache>
#include <QFontMetricsF>
#include <QImage>
#include <QString>

#include <utility>

class QPainter;

namespace tickwise {

/// How the texts of the list stay readable over any wallpaper.
struct WidgetLegibility
{
    bool halo = false;  ///< two blurred black shadows under each text
    bool boost = false; ///< texts in white, secondary ones a little transparent, whatever the palette is
    bool operator==(const WidgetLegibility &) const = default;
};

/// The two shadows of texts in one font. Those last drawn are kept, up to 256 KiB at one pixel a point. Main thread
/// only.
class TextHalo
{
public:
    static constexpr double reach = 8; ///< points around a text's line that its shadows may cover

    /// `font` must have a pixel size.
    explicit TextHalo(const QFont &font);

    /// Draws the shadows of the text that starts at `x` on that baseline.
    void draw(QPainter &painter, double x, double baseline, QStringView text) const;

private:
    struct Image
    {
        QImage pixels;
        QPointF place; ///< of its corner, from the text's start on the baseline
    };

    Image imageOf(const QString &text, double scale) const;

    QFont m_font;
    QFontMetricsF m_metrics;
    mutable QCache<std::pair<QString, double>, Image> m_images; ///< by text and pixels a point
};

} // namespace tickwise
