#pragma once

#include "ui/watchlist/WatchlistReorderSession.h"
#include "ui/watchlist/WatchlistRow.h"

#include <QScrollArea>
#include <QVariantAnimation>

#include <map>
#include <vector>

class QShortcut;

namespace tickwise {

/// The rows of the watchlist in a scroll area, with a row at its place, floating or making room for one that floats.
/// Only the rows in sight, and a few around them, are widgets.
class WatchlistRows : public QScrollArea, private ReorderScroller
{
    Q_OBJECT

public:
    /// `previous` is the control before the rows in the tab order.
    WatchlistRows(WatchlistReorderSession &session, CoinLogoStore *logos, QWidget &previous, QWidget *parent = nullptr);
    ~WatchlistRows() override;

    const std::vector<WatchlistRowContent> &rows() const { return m_rows; }
    /// Shows these rows. An edit under way and the keyboard stay with their entry, or the keyboard goes to the next
    /// row; a drag of other rows ends without a commit.
    void setRows(std::vector<WatchlistRowContent> rows);

    /// The widget of a row that is in sight.
    WatchlistRow *rowAt(int index) const;
    /// Scrolls to the row that has the keyboard, if one has.
    void revealFocus();

Q_SIGNALS:
    void dragAboutToStart();
    /// The user gave the rows a new order.
    void reordered(const QStringList &coinIds);
    void deleteRequested(const QString &coinId);
    void kindChosen(int index, tickwise::CoinAlertKind kind);
    void thresholdEdited(int index, double threshold);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    void scrollTo(const QString &id, ViewportEdge edge, int milliseconds) override;
    void followSession();
    int lastIndex() const { return static_cast<int>(m_rows.size()) - 1; }
    int indexOf(const WatchlistRow &row) const; ///< negative for a row that is not shown
    bool hasFocus(const WatchlistRow &row) const;
    double viewportY(QPointF global) const;
    void startDrag(const WatchlistRow &row, QPointF press);
    void moveBy(int source, int slots);
    void focusRow(int index);
    void followEntries(const QStringList &before, const QStringList &after);
    void makeRoom();
    void layOut();
    WatchlistRow &materialize(int index);
    void chain(int index);
    void recycleOutside(int first, int last);
    void retire(const std::vector<WatchlistRow *> &rows);
    void connectRow(WatchlistRow &row);
    double offsetOf(int index) const;

    WatchlistReorderSession &m_session;
    CoinLogoStore *m_logos;
    QWidget &m_previous;
    int m_rowHeight;
    std::vector<WatchlistRowContent> m_rows;
    QWidget *m_content;
    QShortcut *m_escape;                   ///< enabled during a drag
    std::map<int, WatchlistRow *> m_shown; ///< by index
    std::vector<WatchlistRow *> m_spare;
    QVariantAnimation m_scrolling;
    QVariantAnimation m_makingRoom;
    std::map<int, double> m_roomFrom; ///< offsets at the start of the motion, of the rows that have one
    std::map<int, double> m_roomTo;
};

} // namespace tickwise
