#include "widget/views/WidgetListView.h"

#include "catalog/logos/CoinLogoPainting.h"
#include "support/drawing/SvgPainting.h"
#include "widget/views/WidgetListAccessible.h"

#include <QEvent>
#include <QPaintEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace tickwise {

namespace {

constexpr float separatorOpacity = 0.12F;
/// The longest wait for the time to turn orange: clocks are set, and machines sleep.
constexpr std::chrono::minutes longestWait{1};

/// So many points are a whole number of pixels where the desktop scales in quarters.
constexpr int wholePoints = 4;

/// The smallest rectangle around this one whose edges are whole pixels.
QRect onWholePixels(const QRectF &rect)
{
    const QRectF units(rect.topLeft() / wholePoints, rect.size() / wholePoints);
    const QRect aligned = units.toAlignedRect();
    return {aligned.topLeft() * wholePoints, aligned.size() * wholePoints};
}

/// The same coins in the same places, with the same logos.
bool showsSameCoins(const WidgetEntryContent &a, const WidgetEntryContent &b)
{
    return std::ranges::equal(a.rows, b.rows, [](const WidgetRow &one, const WidgetRow &other) {
        return one.id == other.id && one.logoAssetName == other.logoAssetName && one.symbol == other.symbol;
    });
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
    , m_faces(font(), WidgetListMetrics::of(m_textSize))
{
    WidgetListAccessible::install();
    m_staleness.setSingleShot(true);
    connect(&m_staleness, &QTimer::timeout, this, &WidgetListView::refresh);
    refresh();
}

double WidgetListView::heightOf(DesktopOverlayTextSize size, int rows)
{
    return WidgetListLayout::heightOf(size, rows);
}

WidgetListLayout WidgetListView::layoutOfList() const
{
    return {m_textSize, QSizeF(size()) / m_scale};
}

int WidgetListView::shownRows() const
{
    return layoutOfList().shownRows(int(m_text.rows.size()));
}

QRectF WidgetListView::rowRect(int index) const
{
    const QRectF points = layoutOfList().row(index);
    return {points.topLeft() * m_scale, points.size() * m_scale};
}

void WidgetListView::setContent(const WidgetEntryContent &content)
{
    if (m_content == content)
        return;
    if (!showsSameCoins(std::exchange(m_content, content), content))
        update();
    refresh();
}

void WidgetListView::setTextSize(DesktopOverlayTextSize size)
{
    if (std::exchange(m_textSize, size) != size)
        restyle();
}

void WidgetListView::setScale(double scale)
{
    if (std::exchange(m_scale, scale) != scale)
        restyle();
}

void WidgetListView::setLegibility(const WidgetLegibility &legibility)
{
    if (m_legibility == legibility)
        return;
    m_legibility = legibility;
    restyle();
}

void WidgetListView::refresh()
{
    WidgetListText text = widgetListText(m_content, m_clock(), QTimeZone::systemTimeZone());
    waitForStaleness();
    if (m_text == text)
        return;
    m_text = std::move(text);
    describe();
    arrange();
}

/// Tells assistive technologies, which hear of each call, only what is new.
void WidgetListView::describe()
{
    const QString &description = m_text.rows.empty() ? m_text.emptyText : m_text.updated;
    if (accessibleName() != m_text.title)
        setAccessibleName(m_text.title);
    if (accessibleDescription() != description)
        setAccessibleDescription(description);
}

/// Takes fonts and colors anew, and paints everything.
void WidgetListView::restyle()
{
    m_faces = WidgetListFaces(font(), WidgetListMetrics::of(m_textSize));
    arrange();
    update();
}

/// Gives the texts their places, and paints those that are others.
void WidgetListView::arrange()
{
    updateArea(replaceTexts(m_placed, layoutOfList().texts(m_text, m_faces, colors()), m_legibility.halo));
    WidgetListAccessible::tellChanges(*this);
}

// At edges between two pixels, what is cleared and what is painted would differ by a line.
void WidgetListView::updateArea(const QRectF &area)
{
    if (area.isEmpty())
        return;
    const double ratio = devicePixelRatioF() * wholePoints;
    if (ratio != std::floor(ratio))
        return update();
    const QPoint place = mapTo(window(), QPoint());
    const QRectF changed(area.topLeft() * m_scale + place, area.size() * m_scale);
    update(onWholePixels(changed).translated(-place));
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

void WidgetListView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    arrange();
    update();
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
        restyle();
    QWidget::changeEvent(event);
}

WidgetListColors WidgetListView::colors() const
{
    const QColor text = m_legibility.boost ? QColor(Qt::white) : palette().color(QPalette::WindowText);
    QColor secondary = text;
    secondary.setAlphaF(m_legibility.boost ? 0.85F : 0.65F);
    return {text, secondary, staleColor(text)};
}

void WidgetListView::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.scale(m_scale, m_scale);
    const QRectF area(QPointF(event->rect().topLeft()) / m_scale, QSizeF(event->rect().size()) / m_scale);
    paintLogos(painter, layoutOfList(), area);
    for (const PlacedWidgetText &text : m_placed) {
        if (text.ink(m_legibility.halo).intersects(area))
            text.paint(painter, m_legibility.halo);
    }
}

/// Draws the logos in that area, and the lines between the rows.
void WidgetListView::paintLogos(QPainter &painter, const WidgetListLayout &layout, const QRectF &area) const
{
    const QRectF appLogo = m_text.rows.empty() ? layout.emptyLogo(*m_faces.empty) : layout.headerLogo();
    if (appLogo.intersects(area))
        paintAppLogo(painter, appLogo);
    QColor line = colors().text;
    line.setAlphaF(separatorOpacity);
    for (int i = 0; i < shownRows(); ++i) {
        if (i > 0 && layout.separatorAbove(i).intersects(area))
            painter.fillRect(layout.separatorAbove(i), line);
        if (layout.logo(i).intersects(area))
            paintLogo(painter, layout.logo(i), std::size_t(i));
    }
}

void WidgetListView::paintLogo(QPainter &painter, const QRectF &box, std::size_t index) const
{
    const WidgetRow &coin = m_content.rows[index];
    paintCoinLogo(painter, box, coin.logoAssetName, m_logos ? m_logos(coin.id) : std::nullopt, coin.symbol,
                  palette().color(QPalette::Highlight));
}

} // namespace tickwise
