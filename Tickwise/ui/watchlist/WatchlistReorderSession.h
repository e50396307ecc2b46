#pragma once

#include "pipeline/ReorderGeometry.h"
#include "ui/controls/Spring.h"

#include <QObject>
#include <QProperty>
#include <QStringList>
#include <QTimer>
#include <QVariantAnimation>

#include <functional>
#include <optional>

namespace tickwise {

/// Scrolls the list whose rows are dragged.
class ReorderScroller
{
public:
    virtual ~ReorderScroller() = default;
    /// Brings the row against that edge of the viewport, in a linear motion of that many milliseconds.
    virtual void scrollTo(const QString &id, ViewportEdge edge, int milliseconds) = 0;
};

/// One drag of a row of the watchlist: the floating row, the slot that it would take, scrolling at the edges, settling,
/// and the new order at the end. Lengths and coordinates are those of `ReorderGeometry`. Main thread only.
class WatchlistReorderSession : public QObject
{
    Q_OBJECT

public:
    /// The springs of the rows that make room, and of the released row.
    static constexpr Spring makeRoomSpring{0.18, 0.85};
    static constexpr Spring settleSpring{0.22, 0.85};

    using CommitHandler = std::function<void(const QStringList &ids)>;

    explicit WatchlistReorderSession(QObject *parent = nullptr);

    /// The row that is dragged; none when there is no drag.
    std::optional<QString> draggedID() const { return m_draggedID; }
    /// The slot, in the current order, where the dragged row would land.
    int insertionIndex() const { return m_insertionIndex; }
    /// The place of the dragged row in the order of the start.
    int sourceIndex() const { return m_sourceIndex; }
    /// The top edge of the floating row.
    double floatingY() const { return m_floatingY; }
    /// True while the released row moves to its slot.
    bool isSettling() const { return m_isSettling; }
    const QStringList &orderIDs() const { return m_orderIDs; }
    bool reduceMotion() const { return m_reduceMotion; }

    void setScrollOffset(double offset) { m_viewport.scrollOffset = offset; }
    void setViewportHeight(double height) { m_viewport.height = height; }
    void setRowHeight(double height) { m_viewport.rowHeight = height; }
    void setReduceMotion(bool reduce) { m_reduceMotion = reduce; }
    /// The scroller outlives the drag; a reset forgets it.
    void setScrollProxy(ReorderScroller *scroller) { m_scrollProxy = scroller; }

    /// Starts a drag of the row `id`, which stands at `index` of `ids`. `commit` gets the new order once, when the drag
    /// ends with a changed one. Ignored while a drag is under way.
    void begin(const QString &id, int index, double pointerY, const QStringList &ids, CommitHandler commit);
    /// The pointer moved.
    void drag(double pointerY);
    /// The pointer was released: the row settles, then the order is committed; at once with reduced motion.
    void end();
    /// Ends a drag that gets no release any more. A row that was released still settles.
    void abandon();
    /// Ends any drag without a commit.
    void cancel();

Q_SIGNALS:
    void draggedIDChanged();
    void insertionIndexChanged();
    void floatingYChanged();
    void isSettlingChanged();

private:
    bool isDragging() const { return m_draggedID.value().has_value() && !m_isSettling; }
    int rows() const { return static_cast<int>(m_orderIDs.size()); }
    void followAutoScroll(double pointerY);
    void stopAutoScroll();
    void stepAutoScroll();
    void settle();
    void commit();

    Q_OBJECT_BINDABLE_PROPERTY(WatchlistReorderSession, std::optional<QString>, m_draggedID,
                               &WatchlistReorderSession::draggedIDChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(WatchlistReorderSession, int, m_insertionIndex, 0,
                                         &WatchlistReorderSession::insertionIndexChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(WatchlistReorderSession, double, m_floatingY, 0.0,
                                         &WatchlistReorderSession::floatingYChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(WatchlistReorderSession, bool, m_isSettling, false,
                                         &WatchlistReorderSession::isSettlingChanged)
    QStringList m_orderIDs;
    int m_sourceIndex = 0;
    double m_grabOffsetY = 0;
    ReorderViewport m_viewport;
    bool m_reduceMotion = false;
    ReorderScroller *m_scrollProxy = nullptr;
    CommitHandler m_commitHandler;
    QTimer m_autoScroll;
    std::optional<AutoScrollDirection> m_autoScrollDirection;
    QVariantAnimation m_settleAnimation;
    double m_settleFrom = 0;
    double m_settleTo = 0;
};

} // namespace tickwise
