#include "ui/watchlist/WatchlistReorderSession.h"

#include <cmath>
#include <utility>

namespace tickwise {

namespace {

constexpr int autoScrollPause = 130;  ///< ms from the start of a step to the next
constexpr int autoScrollMotion = 120; ///< ms of a step's motion

} // namespace

WatchlistReorderSession::WatchlistReorderSession(QObject *parent)
    : QObject(parent)
{
    m_autoScroll.setTimerType(Qt::PreciseTimer);
    connect(&m_autoScroll, &QTimer::timeout, this, &WatchlistReorderSession::stepAutoScroll);
    const double seconds = settleSpring.settlingTime().count();
    m_settleAnimation.setDuration(static_cast<int>(std::ceil(seconds * 1000)));
    m_settleAnimation.setStartValue(0.0);
    m_settleAnimation.setEndValue(seconds);
    connect(&m_settleAnimation, &QVariantAnimation::valueChanged, this, [this](const QVariant &time) {
        const double position = settleSpring.positionAt(std::chrono::duration<double>(time.toDouble()));
        m_floatingY = m_settleFrom + (m_settleTo - m_settleFrom) * position;
    });
    connect(&m_settleAnimation, &QVariantAnimation::finished, this, &WatchlistReorderSession::commit);
}

void WatchlistReorderSession::begin(const QString &id, int index, double pointerY, const QStringList &ids,
                                    CommitHandler commit)
{
    if (m_draggedID.value())
        return;
    m_orderIDs = ids;
    m_sourceIndex = index;
    m_commitHandler = std::move(commit);
    const double top = rowTop(index, m_viewport);
    m_grabOffsetY = pointerY - top;
    // The id is last: whoever hears of the drag finds the rest in place.
    m_floatingY = top;
    m_insertionIndex = index;
    m_draggedID = id;
}

void WatchlistReorderSession::drag(double pointerY)
{
    if (!isDragging())
        return;
    m_floatingY = floatingRowTop(pointerY, m_grabOffsetY, rows(), m_viewport);
    if (!m_orderIDs.isEmpty())
        m_insertionIndex = tickwise::insertionIndex(m_floatingY, rows(), m_viewport);
    followAutoScroll(pointerY);
}

void WatchlistReorderSession::followAutoScroll(double pointerY)
{
    const auto direction = autoScrollDirection(pointerY, rows(), m_viewport);
    if (direction == m_autoScrollDirection)
        return;
    stopAutoScroll();
    if (!direction)
        return;
    m_autoScrollDirection = direction;
    m_autoScroll.start(0);
}

void WatchlistReorderSession::stopAutoScroll()
{
    m_autoScroll.stop();
    m_autoScrollDirection.reset();
}

void WatchlistReorderSession::stepAutoScroll()
{
    m_autoScroll.setInterval(autoScrollPause);
    if (!m_scrollProxy || m_orderIDs.isEmpty())
        return;
    const auto step = autoScrollStep(*m_autoScrollDirection, rows(), m_viewport);
    if (!step)
        return stopAutoScroll();
    m_scrollProxy->scrollTo(m_orderIDs.at(step->row), step->edge, autoScrollMotion);
}

void WatchlistReorderSession::end()
{
    if (!isDragging())
        return;
    stopAutoScroll();
    if (m_reduceMotion)
        commit();
    else
        settle();
}

void WatchlistReorderSession::settle()
{
    m_isSettling = true;
    m_settleFrom = m_floatingY;
    m_settleTo = rowTop(m_insertionIndex, m_viewport);
    m_settleAnimation.start();
}

void WatchlistReorderSession::commit()
{
    const bool isChanged = m_insertionIndex != m_sourceIndex;
    const QStringList order = reordered(m_orderIDs, m_sourceIndex, m_insertionIndex);
    const CommitHandler handler = std::exchange(m_commitHandler, nullptr);
    cancel();
    if (isChanged && handler)
        handler(order);
}

void WatchlistReorderSession::abandon()
{
    if (isDragging())
        cancel();
}

void WatchlistReorderSession::cancel()
{
    stopAutoScroll();
    m_settleAnimation.stop();
    m_draggedID = std::nullopt;
    m_isSettling = false;
    m_insertionIndex = 0;
    m_floatingY = 0.0;
    m_orderIDs.clear();
    m_commitHandler = nullptr;
    m_scrollProxy = nullptr;
}

} // namespace tickwise
