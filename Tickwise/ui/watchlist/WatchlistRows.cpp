#include "ui/watchlist/WatchlistRows.h"

#include "ui/controls/Look.h"

#include <QScrollBar>
#include <QShortcut>

#include <algorithm>
#include <cmath>

namespace tickwise {

namespace {

constexpr int rowsAround = 3; ///< rows beyond each edge that are widgets too, for the keyboard's way on

/// The offsets of the rows between a dragged row's place and the slot that it would take.
std::map<int, double> roomFor(int source, int insertion, double rowHeight)
{
    std::map<int, double> offsets;
    for (int i = source + 1; i <= insertion; ++i)
        offsets[i] = -rowHeight;
    for (int i = insertion; i < source; ++i)
        offsets[i] = rowHeight;
    return offsets;
}

double valueAt(const std::map<int, double> &offsets, int index)
{
    const auto entry = offsets.find(index);
    return entry == offsets.end() ? 0 : entry->second;
}

QStringList idsOf(const std::vector<WatchlistRowContent> &rows)
{
    QStringList ids;
    for (const WatchlistRowContent &row : rows)
        ids.append(row.entry.coinId);
    return ids;
}

/// Where the entry at `index` of `before` stands in `after`, negative when it is gone. Entries of one coin keep their
/// order.
int newIndexOf(int index, const QStringList &before, const QStringList &after)
{
    const QString &id = before.at(index);
    qsizetype place = after.indexOf(id);
    for (auto earlier = std::count(before.begin(), before.begin() + index, id); earlier > 0 && place >= 0; --earlier)
        place = after.indexOf(id, place + 1);
    return static_cast<int>(place);
}

} // namespace

WatchlistRows::WatchlistRows(WatchlistReorderSession &session, CoinLogoStore *logos, QWidget &previous, QWidget *parent)
    : QScrollArea(parent)
    , m_session(session)
    , m_logos(logos)
    , m_previous(previous)
    , m_rowHeight(look::scaled(reorderRowHeight))
    , m_content(new QWidget)
    , m_escape(new QShortcut(Qt::Key_Escape, this))
{
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    setWidget(m_content);
    connect(&m_scrolling, &QVariantAnimation::valueChanged, this,
            [this](const QVariant &value) { verticalScrollBar()->setValue(value.toInt()); });
    const double seconds = WatchlistReorderSession::makeRoomSpring.settlingTime().count();
    m_makingRoom.setDuration(static_cast<int>(std::ceil(seconds * 1000)));
    m_makingRoom.setStartValue(0.0);
    m_makingRoom.setEndValue(seconds);
    connect(&m_makingRoom, &QVariantAnimation::valueChanged, this, &WatchlistRows::layOut);
    session.setRowHeight(m_rowHeight);
    followSession();
}

void WatchlistRows::followSession()
{
    // No control has the keyboard during a drag. Escape ends it wherever the key goes, before the window takes it.
    m_escape->setEnabled(false);
    connect(m_escape, &QShortcut::activated, &m_session, &WatchlistReorderSession::cancel);
    connect(&m_session, &WatchlistReorderSession::draggedIDChanged, m_escape,
            [this] { m_escape->setEnabled(m_session.draggedID().has_value()); });
    connect(&m_session, &WatchlistReorderSession::insertionIndexChanged, this, &WatchlistRows::makeRoom);
    connect(&m_session, &WatchlistReorderSession::draggedIDChanged, this, &WatchlistRows::makeRoom);
    connect(&m_session, &WatchlistReorderSession::floatingYChanged, this, &WatchlistRows::layOut);
}

WatchlistRows::~WatchlistRows()
{
    m_session.cancel();
    m_session.disconnect(this);
}

int WatchlistRows::indexOf(const WatchlistRow &row) const
{
    const auto shown = std::ranges::find(m_shown, &row, &std::pair<const int, WatchlistRow *>::second);
    return shown == m_shown.end() ? -1 : shown->first;
}

bool WatchlistRows::hasFocus(const WatchlistRow &row) const
{
    return row.isAncestorOf(window()->focusWidget());
}

void WatchlistRows::setRows(std::vector<WatchlistRowContent> rows)
{
    const QStringList before = idsOf(m_rows);
    const QStringList after = idsOf(rows);
    if (m_session.draggedID() && m_session.orderIDs() != after)
        m_session.cancel();
    m_rows = std::move(rows);
    followEntries(before, after);
    const auto shown = m_shown; // a control that hides passes its focus on, which may scroll
    for (const auto &[index, row] : shown) {
        if (rowAt(index) == row)
            row->setContent(m_rows[static_cast<size_t>(index)]);
    }
    m_content->resize(viewport()->width(), static_cast<int>(m_rows.size()) * m_rowHeight);
    layOut();
}

/// Every row goes to the new place of its entry, with the edit and the keyboard that it may have. From a row whose
/// entry is gone the keyboard goes to the one that takes its place.
void WatchlistRows::followEntries(const QStringList &before, const QStringList &after)
{
    std::map<int, WatchlistRow *> gone;
    for (const auto &[index, row] : std::exchange(m_shown, {})) {
        const int place = newIndexOf(index, before, after);
        (place >= 0 ? m_shown : gone).emplace(place >= 0 ? place : index, row);
    }
    for (const auto &[index, row] : m_shown)
        chain(index);
    std::vector<WatchlistRow *> retired;
    for (const auto &[index, row] : gone) {
        if (hasFocus(*row) && !m_rows.empty())
            materialize(std::min(index, lastIndex())).takeFocusFrom(*row);
        retired.push_back(row);
    }
    retire(retired);
}

WatchlistRow *WatchlistRows::rowAt(int index) const
{
    const auto shown = m_shown.find(index);
    return shown == m_shown.end() ? nullptr : shown->second;
}

void WatchlistRows::focusRow(int index)
{
    ensureVisible(0, index * m_rowHeight + m_rowHeight / 2, 0, m_rowHeight / 2);
    materialize(index).focusHandle();
}

void WatchlistRows::revealFocus()
{
    QWidget *const focused = window()->focusWidget();
    if (m_content->isAncestorOf(focused))
        ensureWidgetVisible(focused, 0, m_rowHeight);
}

void WatchlistRows::resizeEvent(QResizeEvent *event)
{
    QScrollArea::resizeEvent(event);
    m_content->resize(viewport()->width(), static_cast<int>(m_rows.size()) * m_rowHeight);
    m_session.setViewportHeight(viewport()->height());
    layOut();
}

void WatchlistRows::scrollContentsBy(int dx, int dy)
{
    QScrollArea::scrollContentsBy(dx, dy);
    m_session.setScrollOffset(verticalScrollBar()->value());
    layOut();
}

void WatchlistRows::scrollTo(const QString &id, ViewportEdge edge, int milliseconds)
{
    const int top = static_cast<int>(m_session.orderIDs().indexOf(id)) * m_rowHeight;
    const int target = edge == ViewportEdge::top ? top : top + m_rowHeight - viewport()->height();
    m_scrolling.stop();
    m_scrolling.setStartValue(verticalScrollBar()->value());
    m_scrolling.setEndValue(std::clamp(target, 0, verticalScrollBar()->maximum()));
    m_scrolling.setDuration(milliseconds);
    m_scrolling.start();
}

double WatchlistRows::viewportY(QPointF global) const
{
    return viewport()->mapFromGlobal(global).y();
}

void WatchlistRows::startDrag(const WatchlistRow &row, QPointF press)
{
    const int index = indexOf(row);
    if (index < 0)
        return; // its entry went while the handle was pressed
    // A number that is being edited ends its editing first.
    if (QWidget *const focused = window()->focusWidget())
        focused->clearFocus();
    m_session.abandon();
    Q_EMIT dragAboutToStart();
    const QString &id = row.content().entry.coinId;
    m_session.setScrollProxy(this);
    m_session.setScrollOffset(verticalScrollBar()->value());
    m_session.setViewportHeight(viewport()->height());
    m_session.begin(id, index, viewportY(press), idsOf(m_rows),
                    [this](const QStringList &order) { Q_EMIT reordered(order); });
}

void WatchlistRows::moveBy(int source, int slots)
{
    if (source < 0 || m_session.draggedID())
        return;
    const int target = std::clamp(source + slots, 0, lastIndex());
    if (target == source)
        return;
    Q_EMIT reordered(tickwise::reordered(idsOf(m_rows), source, target));
    focusRow(target);
}

/// Moves the rows between the dragged row's place and its slot aside, from where they are now.
void WatchlistRows::makeRoom()
{
    std::map<int, double> now;
    for (const auto &[index, row] : m_shown)
        now[index] = offsetOf(index);
    const bool isDragging = m_session.draggedID().has_value();
    m_makingRoom.stop();
    m_roomFrom = isDragging ? std::move(now) : std::map<int, double>();
    m_roomTo = isDragging ? roomFor(m_session.sourceIndex(), m_session.insertionIndex(), m_rowHeight)
                          : std::map<int, double>();
    if (isDragging && !m_session.reduceMotion() && m_roomFrom != m_roomTo)
        m_makingRoom.start();
    layOut();
}

double WatchlistRows::offsetOf(int index) const
{
    const double to = valueAt(m_roomTo, index);
    if (m_makingRoom.state() != QAbstractAnimation::Running)
        return to;
    const std::chrono::duration<double> time(m_makingRoom.currentValue().toDouble());
    const double from = valueAt(m_roomFrom, index);
    return from + (to - from) * WatchlistReorderSession::makeRoomSpring.positionAt(time);
}

void WatchlistRows::layOut()
{
    const int offset = verticalScrollBar()->value();
    const int last = std::min(lastIndex(), (offset + viewport()->height()) / m_rowHeight + rowsAround);
    const int first = std::max(0, offset / m_rowHeight - rowsAround);
    recycleOutside(first, last);
    for (int index = first; index <= last; ++index)
        materialize(index);
    if (!m_rows.empty()) {
        // The keyboard enters the list there.
        materialize(0);
        materialize(lastIndex());
    }
    const bool isDragging = m_session.draggedID().has_value();
    for (const auto &[index, row] : m_shown) {
        const bool isDragged = isDragging && index == m_session.sourceIndex(); // its coin may have another row
        const double top = isDragged ? offset + m_session.floatingY() : index * m_rowHeight + offsetOf(index);
        row->setGeometry(0, static_cast<int>(std::lround(top)), m_content->width(), m_rowHeight);
        row->setFloating(isDragged);
        if (isDragged)
            row->raise();
    }
}

WatchlistRow &WatchlistRows::materialize(int index)
{
    if (WatchlistRow *const shown = rowAt(index))
        return *shown;
    WatchlistRow *row = nullptr;
    if (m_spare.empty()) {
        row = new WatchlistRow(m_logos, m_content);
        connectRow(*row);
    } else {
        row = m_spare.back();
        m_spare.pop_back();
    }
    row->setContent(m_rows[static_cast<size_t>(index)]);
    row->setGeometry(0, index * m_rowHeight, m_content->width(), m_rowHeight);
    row->show();
    m_shown.emplace(index, row);
    chain(index);
    return *row;
}

/// Puts the row's controls behind those of the row above in the tab order.
void WatchlistRows::chain(int index)
{
    const auto shown = m_shown.find(index);
    QWidget &previous = shown == m_shown.begin() ? m_previous : std::prev(shown)->second->lastControl();
    shown->second->chainAfter(previous);
}

/// Takes away the rows outside the range, but for the one that holds the pointer or the keyboard and for those where
/// the keyboard enters.
void WatchlistRows::recycleOutside(int first, int last)
{
    const bool isDragging = m_session.draggedID().has_value();
    std::vector<WatchlistRow *> gone;
    std::erase_if(m_shown, [&](const std::pair<const int, WatchlistRow *> &shown) {
        const auto [index, row] = shown;
        const bool isEnd = index == 0 || index == lastIndex();
        const bool isHeld = (isDragging && index == m_session.sourceIndex()) || hasFocus(*row);
        if ((index >= first && index <= last) || isEnd || isHeld)
            return false;
        gone.push_back(row);
        return true;
    });
    retire(gone);
}

/// Hides rows that left `m_shown` before: a row that hides passes its focus on, which may scroll.
void WatchlistRows::retire(const std::vector<WatchlistRow *> &rows)
{
    for (WatchlistRow *const row : rows)
        row->hide();
    m_spare.insert(m_spare.end(), rows.begin(), rows.end());
}

void WatchlistRows::connectRow(WatchlistRow &row)
{
    connect(&row, &WatchlistRow::dragStarted, this, [this, &row](QPointF press) { startDrag(row, press); });
    connect(&row, &WatchlistRow::dragged, this, [this](QPointF position) { m_session.drag(viewportY(position)); });
    connect(&row, &WatchlistRow::released, this, [this] { m_session.end(); });
    connect(&row, &WatchlistRow::moveRequested, this, [this, &row](int slots) { moveBy(indexOf(row), slots); });
    connect(&row, &WatchlistRow::deleteRequested, this,
            [this, &row] { Q_EMIT deleteRequested(row.content().entry.coinId); });
    connect(&row, &WatchlistRow::kindChosen, this,
            [this, &row](CoinAlertKind kind) { Q_EMIT kindChosen(indexOf(row), kind); });
    connect(&row, &WatchlistRow::thresholdEdited, this,
            [this, &row](double threshold) { Q_EMIT thresholdEdited(indexOf(row), threshold); });
}

} // namespace tickwise
