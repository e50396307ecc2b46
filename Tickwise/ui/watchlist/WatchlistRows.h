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
    WatchlistRows(WatchlistReorderSession &session, CoinLogoStore *logos, QWidget *parent = nullptr);
    ~WatchlistRows() override;

    const std::vector<WatchlistRowContent> &rows() const { return m_rows; }
    /// Shows these rows. A drag of other rows ends without a commit.
    void setRows(std::vector<WatchlistRowContent> rows);

    /// The widget of a row that is in sight.
    WatchlistRow *rowAt(int index) const;
    /// Scrolls to the row and gives the keyboard to its handle.
    void focusRow(const QString &coinId);

Q_SIGNALS:
    void dragAboutToStart();
    /// The user gave the rows a new order.
    void reordered(const QStringList &coinIds);
    void deleteRequested(const QString &coinId);
    void kindChosen(const QString &coinId, tickwise::CoinAlertKind kind);
    void thresholdEdited(const QString &coinId, double threshold);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    bool focusNextPrevChild(bool next) override;

private:
    void scrollTo(const QString &id, ViewportEdge edge, int milliseconds) override;
    void followSession();
    QStringList ids() const;
    int indexOf(const QString &coinId) const;
    double viewportY(QPointF global) const;
    void startDrag(const WatchlistRow &row, QPointF press);
    void moveBy(const QString &coinId, int slots);
    void makeRoom();
    void layOut();
    WatchlistRow &materialize(int index);
    void recycleOutside(int first, int last);
    void connectRow(WatchlistRow &row);
    double offsetOf(int index) const;

    WatchlistReorderSession &m_session;
    CoinLogoStore *m_logos;
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
