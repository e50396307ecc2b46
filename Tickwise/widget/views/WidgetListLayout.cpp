#include "widget/views/WidgetListLayout.h"

#include "settings/HexColor.h"
#include "support/drawing/Contrast.h"

#include <algorithm>

namespace tickwise {

namespace {

constexpr double rowInset = 6;
constexpr double spacing = 8;
constexpr double rowSlack = 2; ///< may be missing below the last row: windows lose a pixel at fractional scales
constexpr double logoSide = 24;
constexpr double headerLogoSide = 16;
constexpr double emptyLogoSide = 40;
constexpr double compactWidth = 220; ///< below, a row shows the change under the price and no name
constexpr QColor lightOrange(255, 149, 0);
constexpr QColor darkOrange(163, 82, 0);

std::shared_ptr<const WidgetFace> face(const QFont &base, int pixels, QFont::Weight weight = QFont::Normal)
{
    QFont font = base;
    font.setPixelSize(pixels);
    font.setWeight(weight);
    return std::make_shared<const WidgetFace>(font);
}

double widestChange(const WidgetListText &text, const WidgetFace &face)
{
    double widest = 0;
    for (const WidgetRowText &row : text.rows)
        widest = std::max(widest, face.width(row.change, true));
    return widest;
}

} // namespace

QColor staleColor(const QColor &text)
{
    return contrast(text, Qt::black) > contrast(text, Qt::white) ? lightOrange : darkOrange;
}

WidgetListMetrics WidgetListMetrics::of(DesktopOverlayTextSize size)
{
    return size == DesktopOverlayTextSize::large ? WidgetListMetrics{23, 42, 15, 12}
                                                 : WidgetListMetrics{22, 38, 13, 11};
}

WidgetListFaces::WidgetListFaces(const QFont &base, const WidgetListMetrics &metrics)
    : title(face(base, 12, QFont::DemiBold))
    , updated(face(base, 11))
    , empty(face(base, 12))
    , large(face(base, metrics.large, QFont::DemiBold))
    , small(face(base, metrics.small))
{
}

WidgetListLayout::WidgetListLayout(DesktopOverlayTextSize size, QSizeF area)
    : m_metrics(WidgetListMetrics::of(size))
    , m_area(area)
{
}

int WidgetListLayout::shownRows(int rows) const
{
    const double room = m_area.height() - m_metrics.header + separator + rowSlack;
    return std::clamp(int(room / (m_metrics.row + separator)), 0, rows);
}

double WidgetListLayout::heightOf(DesktopOverlayTextSize size, int rows)
{
    const WidgetListMetrics metrics = WidgetListMetrics::of(size);
    return metrics.header + metrics.row * rows + separator * std::max(rows - 1, 0);
}

QRectF WidgetListLayout::row(int index) const
{
    return {0, m_metrics.header + index * (m_metrics.row + separator), m_area.width(), m_metrics.row};
}

QRectF WidgetListLayout::separatorAbove(int index) const
{
    return {rowInset, row(index).top() - separator, m_area.width() - 2 * rowInset, separator};
}

QRectF WidgetListLayout::logo(int index) const
{
    return {rowInset, row(index).center().y() - logoSide / 2, logoSide, logoSide};
}

QRectF WidgetListLayout::header() const
{
    return {rowInset, 0, m_area.width() - 2 * rowInset, m_metrics.header - 4};
}

QRectF WidgetListLayout::headerLogo() const
{
    return {rowInset, header().center().y() - headerLogoSide / 2, headerLogoSide, headerLogoSide};
}

QRectF WidgetListLayout::emptyLogo(const WidgetFace &text) const
{
    const double top = (m_area.height() - emptyLogoSide - spacing - text.metrics.height()) / 2;
    return {(m_area.width() - emptyLogoSide) / 2, top, emptyLogoSide, emptyLogoSide};
}

std::vector<WidgetText> WidgetListLayout::texts(const WidgetListText &text, const WidgetListFaces &faces,
                                                const WidgetListColors &colors) const
{
    std::vector<WidgetText> texts;
    if (text.rows.empty()) {
        const QRectF line(0, emptyLogo(*faces.empty).bottom() + spacing, m_area.width(), faces.empty->metrics.height());
        texts.push_back({text.emptyText, faces.empty, colors.secondary, false, line, Qt::AlignHCenter});
        return texts;
    }
    addHeader(texts, text, faces, colors);
    const double changeWidth = widestChange(text, *faces.small);
    const int count = shownRows(int(text.rows.size()));
    for (int i = 0; i < count; ++i)
        addRow(texts, text.rows[std::size_t(i)], row(i).adjusted(rowInset, 0, -rowInset, 0), changeWidth, faces,
               colors);
    return texts;
}

void WidgetListLayout::addHeader(std::vector<WidgetText> &texts, const WidgetListText &text,
                                 const WidgetListFaces &faces, const WidgetListColors &colors) const
{
    const double updatedWidth = faces.updated->width(text.updated, true);
    const QRectF title = header().adjusted(headerLogoSide + rowInset, 0, -updatedWidth - spacing, 0);
    const QColor updatedColor = text.isStale ? colors.stale : colors.secondary;
    texts.push_back({text.updated, faces.updated, updatedColor, true, header(), Qt::AlignRight});
    texts.push_back({text.title, faces.title, colors.text, false, title});
}

void WidgetListLayout::addRow(std::vector<WidgetText> &texts, const WidgetRowText &row, const QRectF &box,
                              double changeWidth, const WidgetListFaces &faces, const WidgetListColors &colors) const
{
    const bool isCompact = m_area.width() < compactWidth;
    const QRectF upper = box.adjusted(0, 2, 0, -box.height() / 2);
    const QRectF lower = box.adjusted(0, box.height() / 2 - 1, 0, -3);
    const QRectF price = isCompact ? upper : box.adjusted(0, 0, -changeWidth - spacing, 0);
    const QColor changeColor =
        row.isDelisted ? colors.secondary : colorFromHex(row.changeColorHex).value_or(colors.text);
    texts.push_back({row.price, faces.large, colors.text, true, price, Qt::AlignRight});
    texts.push_back({row.change, faces.small, changeColor, true, isCompact ? lower : box, Qt::AlignRight});

    const double left = logoSide + spacing;
    const double right = box.right() - price.right() + faces.large->width(row.price, true) + spacing;
    const QRectF symbol = (isCompact ? box : upper).adjusted(left, 0, -right, 0);
    texts.push_back({row.symbol, faces.large, colors.text, false, symbol});
    if (!isCompact)
        texts.push_back({row.name, faces.small, colors.secondary, false, lower.adjusted(left, 0, -right, 0)});
}

} // namespace tickwise
