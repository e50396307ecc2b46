#pragma once

#include "catalog/Coin.h"
#include "settings/AppSettings.h"

#include <QWidget>

namespace tickwise {

class CoinLogoStore;
class IconButton;
class WatchlistAlertControls;

/// What a row of the watchlist tab shows: an entry of the settings and the catalog's record of its coin.
struct WatchlistRowContent
{
    WatchlistCoin entry;
    CoinMetadata coin; ///< of a coin that the catalog lacks only the id, which stands for the name
    bool operator==(const WatchlistRowContent &) const = default;
};

/// The rows for these settings, one an entry, in order.
std::vector<WatchlistRowContent> watchlistRows(const AppSettings &settings, const CoinIndex &catalog);

/// One row of the watchlist tab: handle, logo, symbol and name, alert controls, delete button.
class WatchlistRow : public QWidget
{
    Q_OBJECT

public:
    explicit WatchlistRow(CoinLogoStore *logos, QWidget *parent = nullptr);

    const WatchlistRowContent &content() const { return m_content; }
    void setContent(const WatchlistRowContent &content);

    /// Draws the row as one that is lifted from the list.
    void setFloating(bool floating);
    /// Gives the keyboard to the handle.
    void focusHandle();
    /// Takes the keyboard from a row that goes: the delete button from its like, the handle from other controls.
    void takeFocusFrom(const WatchlistRow &row);
    /// Puts the controls behind that one in the tab order.
    void chainAfter(QWidget &previous);
    QWidget &lastControl() const;

Q_SIGNALS:
    /// The handle is dragged; positions are global.
    void dragStarted(QPointF press);
    void dragged(QPointF position);
    void released();
    /// The row is to move by that many slots: the keyboard asks.
    void moveRequested(int slots);
    void deleteRequested();
    void kindChosen(tickwise::CoinAlertKind kind);
    void thresholdEdited(double threshold);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    bool handleMouse(QMouseEvent &event);
    bool handleKey(const QKeyEvent &event);
    void leavePointer();
    void writeTexts();
    void paintTexts(QPainter &painter) const;

    CoinLogoStore *m_logos;
    WatchlistRowContent m_content;
    IconButton *m_handle;
    WatchlistAlertControls *m_alert;
    IconButton *m_delete;
    bool m_isFloating = false;
    bool m_isDragging = false;
    QPointF m_press;
    QPointF m_pointer; ///< the last that the handle has seen; global
};

} // namespace tickwise
