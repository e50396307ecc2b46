#include "widget/views/WidgetListView.h"

#include "catalog/logos/CoinLogoPainting.h"
#include "settings/HexColor.h"
#include "support/drawing/SvgPainting.h"
#include "widget/views/WidgetListAccessible.h"

#include <QEvent>
#include <QPainter>

#include <algorithm>

namespace tickwise {

namespace {

constexpr double rowInset = 6;
constexpr double spacing = 8;
constexpr double separator = 1;
constexpr double rowSlack = 2; ///< may be missing below the last row: windows lose a pixel at fractional scales
constexpr double logoSide = 24;
constexpr double headerLogoSide = 16;
constexpr double emptyLogoSide = 40;
constexpr double compactWidth = 220; ///< below, a line shows the change under the price and no name
constexpr QColor staleColor(255, 149, 0);
/// The longest wait for the time to turn orange: clocks are set, and machines sleep.
constexpr std::chrono::minutes longestWait{1};

struct Metrics
{
    double header;
    double row;
    int large; ///< pixel size of symbols and prices
    int small; ///< pixel size of names and changes
};

Metrics metricsFor(DesktopOverlayTextSize size)
{
    return size == DesktopOverlayTextSize::large ? Metrics{23, 42, 15, 12} : Metrics{22, 38, 13, 11};
}

QFont fontOf(const QWidget &widget, int pixels, QFont::Weight weight = QFont::Normal)
{
    QFont font = widget.font();
    font.setPixelSize(pixels);
    font.setWeight(weight);
    return font;
}

void paintAppLogo(QPainter &painter, const QRectF &box)
{
    paintSvg(painter, box, QStringLiteral(":/app-logo.svg"));
}

} // namespace

WidgetListView::WidgetListView(LogoSource logos, Clock clock, QWidget *parent)
    : QWidget(parent)
    , m_logos(std::move(logos))
    , m_clock(std::move(clock))
{
    WidgetListAccessible::install();
    m_staleness.setSingleShot(true);
    connect(&m_staleness, &QTimer::timeout, this, &WidgetListView::refresh);
    refresh();
}

double WidgetListView::heightOf(DesktopOverlayTextSize size, int rows)
{
    const Metrics metrics = metricsFor(size);
    return metrics.header + metrics.row * rows + separator * std::max(rows - 1, 0);
}

int WidgetListView::shownRows() const
{
    const Metrics metrics = metricsFor(m_textSize);
    const double room = height() / m_scale - metrics.header + separator + rowSlack;
    return std::clamp(int(room / (metrics.row + separator)), 0, int(m_text.rows.size()));
}

QRectF WidgetListView::rowRect(int index) const
{
    const Metrics metrics = metricsFor(m_textSize);
    const QRectF points(0, metrics.header + index * (metrics.row + separator), width() / m_scale, metrics.row);
    return {points.topLeft() * m_scale, points.size() * m_scale};
}

void WidgetListView::setContent(const WidgetEntryContent &content)
{
    if (m_content == content)
        return;
    m_content = content;
    refresh();
}

void WidgetListView::setTextSize(DesktopOverlayTextSize size)
{
    if (std::exchange(m_textSize, size) != size)
        update();
}

void WidgetListView::setScale(double scale)
{
    if (std::exchange(m_scale, scale) != scale)
        update();
}

void WidgetListView::setLegibility(const WidgetLegibility &legibility)
{
    if (m_legibility == legibility)
        return;
    m_legibility = legibility;
    update();
}

void WidgetListView::refresh()
{
    const WidgetListText text = widgetListText(m_content, m_clock(), QTimeZone::systemTimeZone());
    waitForStaleness();
    if (m_text == text)
        return;
    m_text = text;
    setAccessibleName(m_text.title);
    setAccessibleDescription(m_text.rows.empty() ? m_text.emptyText : m_text.updated);
    update();
}

/// The time turns orange by itself while it is shown.
void WidgetListView::waitForStaleness()
{
    m_staleness.stop();
    if (!isVisible() || !m_content.updatedAt)
        return;
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(*m_content.updatedAt + staleAge - m_clock());
    if (wait >= std::chrono::milliseconds(0))
        m_staleness.start(std::min<std::chrono::milliseconds>(wait, longestWait) + std::chrono::milliseconds(1));
}

void WidgetListView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    refresh();
}

void WidgetListView::hideEvent(QHideEvent *event)
{
    m_staleness.stop();
    QWidget::hideEvent(event);
}

void WidgetListView::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange)
        update();
    QWidget::changeEvent(event);
}

QColor WidgetListView::textColor() const
{
    return m_legibility.boost ? QColor(Qt::white) : palette().color(QPalette::WindowText);
}

QColor WidgetListView::secondaryColor() const
{
    QColor color = textColor();
    color.setAlphaF(m_legibility.boost ? 0.85F : 0.65F);
    return color;
}

void WidgetListView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.scale(m_scale, m_scale);
    const QRectF area(QPointF(), QSizeF(size()) / m_scale);
    if (m_text.rows.empty())
        return paintEmpty(painter, area);
    const Metrics metrics = metricsFor(m_textSize);
    paintHeader(painter, QRectF(area.left(), area.top(), area.width(), metrics.header));
    paintRows(painter, area.adjusted(0, metrics.header, 0, 0));
}

void WidgetListView::paintHeader(QPainter &painter, const QRectF &box) const
{
    const QRectF inner = box.adjusted(rowInset, 0, -rowInset, -4);
    paintAppLogo(painter,
                 QRectF(inner.left(), inner.center().y() - headerLogoSide / 2, headerLogoSide, headerLogoSide));
    const WidgetTextRun updated{m_text.updated, fontOf(*this, 11), m_text.isStale ? staleColor : secondaryColor(),
                                true};
    const double updatedWidth = widgetTextWidth(updated);
    paintWidgetText(painter, inner, Qt::AlignRight, updated, m_legibility.halo);
    const WidgetTextRun title{m_text.title, fontOf(*this, 12, QFont::DemiBold), textColor()};
    paintWidgetText(painter, inner.adjusted(headerLogoSide + rowInset, 0, -updatedWidth - spacing, 0), Qt::AlignLeft,
                    title, m_legibility.halo);
}

void WidgetListView::paintEmpty(QPainter &painter, const QRectF &box) const
{
    const QFont font = fontOf(*this, 12);
    const double textHeight = QFontMetricsF(font).height();
    const double top = (box.height() - emptyLogoSide - spacing - textHeight) / 2;
    paintAppLogo(painter, QRectF((box.width() - emptyLogoSide) / 2, top, emptyLogoSide, emptyLogoSide));
    const QRectF line(0, top + emptyLogoSide + spacing, box.width(), textHeight);
    paintWidgetText(painter, line, Qt::AlignHCenter, {m_text.emptyText, font, secondaryColor()}, m_legibility.halo);
}

void WidgetListView::paintRows(QPainter &painter, const QRectF &box) const
{
    const Metrics metrics = metricsFor(m_textSize);
    double changeWidth = 0;
    for (const WidgetRowText &row : m_text.rows)
        changeWidth = std::max(changeWidth, widgetTextWidth({row.change, fontOf(*this, metrics.small), {}, true}));
    QColor line = textColor();
    line.setAlphaF(0.12F);
    QRectF row(box.left() + rowInset, box.top(), box.width() - 2 * rowInset, metrics.row);
    for (int i = 0; i < shownRows(); ++i) {
        if (i > 0)
            painter.fillRect(QRectF(row.left(), row.top() - separator, row.width(), separator), line);
        paintRow(painter, row, static_cast<std::size_t>(i), changeWidth);
        row.translate(0, metrics.row + separator);
    }
}

void WidgetListView::paintRow(QPainter &painter, const QRectF &box, size_t index, double changeWidth) const
{
    const WidgetRow &coin = m_content.rows[index];
    const WidgetRowText &row = m_text.rows[index];
    const Metrics metrics = metricsFor(m_textSize);
    const bool isCompact = box.width() + 2 * rowInset < compactWidth;
    const bool halo = m_legibility.halo;
    paintCoinLogo(painter, QRectF(box.left(), box.center().y() - logoSide / 2, logoSide, logoSide), coin.logoAssetName,
                  m_logos ? m_logos(coin.id) : std::nullopt, coin.symbol, palette().color(QPalette::Highlight));

    const WidgetTextRun price{row.price, fontOf(*this, metrics.large, QFont::DemiBold), textColor(), true};
    const std::optional<QColor> changeColor = colorFromHex(row.changeColorHex);
    const WidgetTextRun change{row.change, fontOf(*this, metrics.small),
                               row.isDelisted ? secondaryColor() : changeColor.value_or(textColor()), true};
    const QRectF upper = box.adjusted(0, 2, 0, -box.height() / 2);
    const QRectF lower = box.adjusted(0, box.height() / 2 - 1, 0, -3);
    const QRectF priceBox = isCompact ? upper : box.adjusted(0, 0, -changeWidth - spacing, 0);
    paintWidgetText(painter, priceBox, Qt::AlignRight, price, halo);
    paintWidgetText(painter, isCompact ? lower : box, Qt::AlignRight, change, halo);

    const double left = logoSide + spacing;
    const double right = box.right() - priceBox.right() + widgetTextWidth(price) + spacing;
    const WidgetTextRun symbol{row.symbol, fontOf(*this, metrics.large, QFont::DemiBold), textColor()};
    if (isCompact)
        return paintWidgetText(painter, box.adjusted(left, 0, -right, 0), Qt::AlignLeft, symbol, halo);
    paintWidgetText(painter, upper.adjusted(left, 0, -right, 0), Qt::AlignLeft, symbol, halo);
    paintWidgetText(painter, lower.adjusted(left, 0, -right, 0), Qt::AlignLeft,
                    {row.name, fontOf(*this, metrics.small), secondaryColor()}, halo);
}

} // namespace tickwise

// Here, and not among the library's others, so that a small program takes no more of the library than it uses.
#include "moc_WidgetListView.cpp" // NOLINT(bugprone-suspicious-include)
