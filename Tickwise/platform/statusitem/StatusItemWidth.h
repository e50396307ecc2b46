#pragma once

#include <QMap>
#include <algorithm>

namespace tickwise {

/// The width of a status text: for one number of characters it only grows, so that the panel stays still while prices
/// tick.
class StatusItemWidth
{
public:
    /// The width to use for a text of that many characters that needs `needed` points.
    double widthFor(qsizetype characters, double needed)
    {
        double &width = m_widths[characters];
        width = std::max(width, needed);
        return width;
    }

private:
    QMap<qsizetype, double> m_widths;
};

} // namespace tickwise
