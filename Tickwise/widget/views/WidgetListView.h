#pragma once

#include "settings/AppSettings.h"
#include "support/Clock.h"
#include "widget/WidgetListText.h"
#include "widget/views/TextHalo.h"

#include <QImage>
#include <QTimer>
#include <QWidget>

#include <functional>

namespace tickwise {

/// The list of the desktop widget and of the desktop overlay: a header with the time of the prices, one line a coin, or
/// the empty state. It paints one content on a transparent ground; lines that do not fit are cut at the bottom.
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
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void refresh();
    void waitForStaleness();
    QColor textColor() const;
    QColor secondaryColor() const;
    void paintHeader(QPainter &painter, const QRectF &box) const;
    void paintEmpty(QPainter &painter, const QRectF &box) const;
    void paintRows(QPainter &painter, const QRectF &box) const;
    void paintRow(QPainter &painter, const QRectF &box, size_t index, double changeWidth) const;

    LogoSource m_logos;
    Clock m_clock;
    WidgetEntryContent m_content;
    WidgetListText m_text;
    DesktopOverlayTextSize m_textSize = DesktopOverlayTextSize::normal;
    double m_scale = 1;
    WidgetLegibility m_legibility;
    QTimer m_staleness;
};

} // namespace tickwise
