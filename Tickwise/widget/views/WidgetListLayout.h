#pragma once

#include "settings/AppSettings.h"
#include "widget/WidgetListText.h"
#include "widget/views/WidgetText.h"

namespace tickwise {

/// The measures of the list in one text size, in points.
struct WidgetListMetrics
{
    double header;
    double row;
    int large; ///< pixel size of symbols and prices
    int small; ///< pixel size of names and changes

    static WidgetListMetrics of(DesktopOverlayTextSize size);
};

/// The fonts of the list in one text size.
struct WidgetListFaces
{
    WidgetListFaces(const QFont &base, const WidgetListMetrics &metrics);

    std::shared_ptr<const WidgetFace> title;
    std::shared_ptr<const WidgetFace> updated;
    std::shared_ptr<const WidgetFace> empty;
    std::shared_ptr<const WidgetFace> large;
    std::shared_ptr<const WidgetFace> small;
};

struct WidgetListColors
{
    QColor text;
    QColor secondary;
    QColor stale; ///< of the time of old prices
};

/// The orange that can be read where text of that color is.
QColor staleColor(const QColor &text);

/// Where the parts of the list are in an area that starts at the origin. Everything is in points.
class WidgetListLayout
{
public:
    static constexpr double separator = 1;

    WidgetListLayout(DesktopOverlayTextSize size, QSizeF area);

    /// How many of so many rows fit; those below are cut.
    int shownRows(int rows) const;
    /// The height of the header and of that many rows.
    static double heightOf(DesktopOverlayTextSize size, int rows);

    /// The row over the whole width.
    QRectF row(int index) const;
    /// The line above each row but the first.
    QRectF separatorAbove(int index) const;
    QRectF logo(int index) const;
    QRectF headerLogo() const;
    /// The logo of the empty state, over a text in that font.
    QRectF emptyLogo(const WidgetFace &text) const;

    /// The header and the rows that are shown, or the empty state.
    std::vector<WidgetText> texts(const WidgetListText &text, const WidgetListFaces &faces,
                                  const WidgetListColors &colors) const;

private:
    QRectF header() const;
    void addHeader(std::vector<WidgetText> &texts, const WidgetListText &text, const WidgetListFaces &faces,
                   const WidgetListColors &colors) const;
    void addRow(std::vector<WidgetText> &texts, const WidgetRowText &row, const QRectF &box, double changeWidth,
                const WidgetListFaces &faces, const WidgetListColors &colors) const;

    WidgetListMetrics m_metrics;
    QSizeF m_area;
};

} // namespace tickwise
