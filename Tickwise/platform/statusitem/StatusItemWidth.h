#pragma once

#include <QFont>

#include <algorithm>
#include <map>
#include <utility>

namespace tickwise {

/// The width of a status text: for one height, font and number of characters it only grows, so that the panel stays
/// still while prices tick.
class StatusItemWidth
{
public:
    /// The width to use for a text of that many characters that needs `needed` points. Another font than before makes
    /// it forget all widths.
    double widthFor(const QFont &font, double height, qsizetype characters, double needed)
    {
        if (font != m_font)
            m_widths.clear();
        m_font = font;
        double &width = m_widths[{height, characters}];
        width = std::max(width, needed);
        return width;
    }

    void clear() { m_widths.clear(); }

private:
    QFont m_font;
    std::map<std::pair<double, qsizetype>, double> m_widths;
};

} // namespace tickwise
