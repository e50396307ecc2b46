#pragma once

#include "settings/AppSettings.h"
#include "support/Clock.h"
#include "widget/WidgetListText.h"
#include "widget/views/WidgetListLayout.h"

#include <QImage>
#include <QTimer>
#include <QWidget>

#include <functional>

namespace tickwise {

/// The list of the desktop widget and of the desktop overlay: a header with the time of the prices, one line a coin, or
/// the empty state. It paints one content on a transparent ground; lines that do not fit are cut at the bottom. Another
/// content of the same coins repaints only the area of the texts that are others.
class WidgetListView : public QWidget
{
    Q_OBJECT

public:
    /// The downloaded logo of a coin; none where there is none.
    using LogoSource = std::function<std::optional<QImage>(const QString &coinID)>;

    explicit WidgetListView(LogoSource logos, Clock clock = systemClock, QWidget *parent = nullptr);

    const WidgetEntryContent &content() const { return m_content; }
    void setContent(const WidgetEntryContent &content);
    void setTextSize(DesktopOverlayTextSize size);
    /// Draws everything so much larger, as the desktop draws its texts; 1 at first.
    void setScale(double scale);
    void setLegibility(const WidgetLegibility &legibility);
    const WidgetLegibility &legibility() const { return m_legibility; }

    /// What is shown at this moment.
    const WidgetListText &text() const { return m_text; }

    /// How many of the rows fit; those below are cut.
    int shownRows() const;
    /// Where the row is in the view.
    QRectF rowRect(int index) const;

    /// The height of the header and of that many lines at scale 1, without the padding around the list.
    static double heightOf(DesktopOverlayTextSize size, int rows);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void refresh();
    void waitForStaleness();
    void describe();
    WidgetListLayout layoutOfList() const;
    WidgetListColors colors() const;
    void arrange();
    void restyle();
    void updateArea(const QRectF &area);
    void paintLogos(QPainter &painter, const WidgetListLayout &layout, const QRectF &area) const;
    void paintLogo(QPainter &painter, const QRectF &box, std::size_t index) const;

    LogoSource m_logos;
    Clock m_clock;
    WidgetEntryContent m_content;
    WidgetListText m_text;
    DesktopOverlayTextSize m_textSize = DesktopOverlayTextSize::normal;
    double m_scale = 1;
    WidgetLegibility m_legibility;
    WidgetListFaces m_faces;
    std::vector<PlacedWidgetText> m_placed;
    QTimer m_staleness;
};

} // namespace tickwise
