#include "ui/watchlist/WatchlistReorderSession.h"

#include "doubles/TestProgram.h"

#include <QSignalSpy>
#include <QTimer>

#include <memory>
#include <optional>
#include <vector>

using namespace tickwise;

namespace {

/// A list that scrolls at once and tells the session.
class RecordingScroller : public ReorderScroller
{
public:
    struct Step
    {
        QString id;
        ViewportEdge edge;
        int milliseconds;
        bool operator==(const Step &) const = default;
    };

    RecordingScroller(WatchlistReorderSession &session, QStringList ids, double height)
        : m_session(session)
        , m_ids(std::move(ids))
        , m_height(height)
    {
    }

    void scrollTo(const QString &id, ViewportEdge edge, int milliseconds) override
    {
        steps.push_back({id, edge, milliseconds});
        const double top = static_cast<double>(m_ids.indexOf(id)) * reorderRowHeight;
        offset = edge == ViewportEdge::top ? top : top + reorderRowHeight - m_height;
        m_session.setScrollOffset(offset);
    }

    std::vector<Step> steps;
    double offset = 0;

private:
    WatchlistReorderSession &m_session;
    QStringList m_ids;
    double m_height;
};

QStringList numbered(int count)
{
    QStringList ids;
    for (int i = 0; i < count; ++i)
        ids.append(QString::number(i));
    return ids;
}

} // namespace

class WatchlistReorderSessionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void beginPublishesTogether();
    void beginDuringADragIsIgnored();
    void followsThePointer();
    void pastTheEnds();
    void pointerWithoutADragDoesNothing();
    void commitsAfterSettling();
    void reducedMotionCommitsAtOnce();
    void ownSlotCommitsNothing();
    void movesDuringSettlingAreIgnored();
    void releaseDuringSettlingIsIgnored();
    void cancelCommitsNothing();
    void cancelDuringSettlingCommitsNothing();
    void abandonEndsADragThatWasNotReleased();
    void aSessionThatIsGoneCommitsNothing();
    void aCommitMayStartTheNextDrag();
    void oneRowStays();
    void scrollsUpUntilTheTop();
    void scrollsDownUntilTheEnd();
    void doesNotScrollAtTheEnd();
    void leavingTheEdgeStopsScrolling();
    void theOtherEdgeTurnsScrolling();
    void releaseStopsScrolling();
    void aListThatScrolledMovesTheSettlingRow();
    void insertionIsToldOnlyWhenItChanges();

private:
    void begin(const QString &id, double pointerY);

    std::unique_ptr<WatchlistReorderSession> m_session;
    std::unique_ptr<RecordingScroller> m_scroller;
    QStringList m_ids;
    std::vector<QStringList> m_commits;
};

void WatchlistReorderSessionTest::init()
{
    m_ids = numbered(10);
    m_commits.clear();
    m_session = std::make_unique<WatchlistReorderSession>();
    m_session->setViewportHeight(220);
    m_scroller = std::make_unique<RecordingScroller>(*m_session, m_ids, 220);
    m_session->setScrollProxy(m_scroller.get());
}

void WatchlistReorderSessionTest::cleanup()
{
    m_session.reset();
}

void WatchlistReorderSessionTest::begin(const QString &id, double pointerY)
{
    m_session->begin(id, static_cast<int>(m_ids.indexOf(id)), pointerY, m_ids,
                     [this](const QStringList &ids) { m_commits.push_back(ids); });
}

void WatchlistReorderSessionTest::beginPublishesTogether()
{
    m_session->setScrollOffset(44);
    int told = 0;
    QObject::connect(m_session.get(), &WatchlistReorderSession::draggedIDChanged, this, [&] {
        ++told;
        QCOMPARE(m_session->draggedID(), std::optional(QStringLiteral("3")));
        QCOMPARE(m_session->insertionIndex(), 3);
        QCOMPARE(m_session->floatingY(), 88.0);
    });
    begin(QStringLiteral("3"), 100);
    QCOMPARE(told, 1);
    QCOMPARE(m_session->sourceIndex(), 3);
    QCOMPARE(m_session->orderIDs(), m_ids);
    QObject::disconnect(m_session.get(), nullptr, this, nullptr);
}

void WatchlistReorderSessionTest::beginDuringADragIsIgnored()
{
    begin(QStringLiteral("3"), 140);
    begin(QStringLiteral("1"), 50);
    QCOMPARE(m_session->draggedID(), std::optional(QStringLiteral("3")));
}

void WatchlistReorderSessionTest::followsThePointer()
{
    begin(QStringLiteral("1"), 50);
    m_session->drag(94);
    QCOMPARE(m_session->floatingY(), 88.0);
    QCOMPARE(m_session->insertionIndex(), 2);
    m_session->drag(71);
    QCOMPARE(m_session->floatingY(), 65.0);
    QCOMPARE(m_session->insertionIndex(), 1);
}

void WatchlistReorderSessionTest::pastTheEnds()
{
    begin(QStringLiteral("1"), 50);
    m_session->drag(-500);
    QCOMPARE(m_session->floatingY(), 0.0);
    QCOMPARE(m_session->insertionIndex(), 0);
    m_session->drag(5000);
    QCOMPARE(m_session->floatingY(), 176.0);
    QCOMPARE(m_session->insertionIndex(), 4);
}

void WatchlistReorderSessionTest::pointerWithoutADragDoesNothing()
{
    QSignalSpy moved(m_session.get(), &WatchlistReorderSession::floatingYChanged);
    m_session->drag(100);
    m_session->end();
    QCOMPARE(moved.size(), 0);
    QCOMPARE(m_scroller->steps.size(), std::size_t(0));
}

void WatchlistReorderSessionTest::commitsAfterSettling()
{
    begin(QStringLiteral("1"), 50);
    m_session->drag(140);
    m_session->end();
    QVERIFY(m_session->isSettling());
    QCOMPARE(m_session->insertionIndex(), 3);
    QVERIFY(m_commits.empty());
    double lastY = 0;
    QObject::connect(m_session.get(), &WatchlistReorderSession::floatingYChanged, this, [&] {
        if (m_session->draggedID())
            lastY = m_session->floatingY();
    });
    QTRY_COMPARE(m_commits.size(), std::size_t(1));
    QVERIFY(qAbs(lastY - 132) < 1);
    QCOMPARE(m_commits.front(), reordered(m_ids, 1, 3));
    QVERIFY(!m_session->draggedID());
    QVERIFY(!m_session->isSettling());
    QCOMPARE(m_session->insertionIndex(), 0);
    QCOMPARE(m_session->floatingY(), 0.0);
    QVERIFY(m_session->orderIDs().isEmpty());
}

void WatchlistReorderSessionTest::reducedMotionCommitsAtOnce()
{
    m_session->setReduceMotion(true);
    begin(QStringLiteral("4"), 180);
    m_session->drag(10);
    m_session->end();
    QCOMPARE(m_commits, std::vector{reordered(m_ids, 4, 0)});
    QVERIFY(!m_session->draggedID());
}

void WatchlistReorderSessionTest::ownSlotCommitsNothing()
{
    m_session->setReduceMotion(true);
    begin(QStringLiteral("1"), 50);
    m_session->drag(60);
    m_session->end();
    QVERIFY(!m_session->draggedID());
    QVERIFY(m_commits.empty());
}

void WatchlistReorderSessionTest::movesDuringSettlingAreIgnored()
{
    begin(QStringLiteral("1"), 50);
    m_session->drag(140);
    m_session->end();
    m_session->drag(0);
    QCOMPARE(m_session->insertionIndex(), 3);
    QTRY_COMPARE(m_commits.size(), std::size_t(1));
}

void WatchlistReorderSessionTest::releaseDuringSettlingIsIgnored()
{
    begin(QStringLiteral("1"), 50);
    m_session->drag(140);
    m_session->end();
    m_session->setReduceMotion(true);
    m_session->end();
    QVERIFY(m_commits.empty());
    QTRY_COMPARE(m_commits.size(), std::size_t(1));
}

void WatchlistReorderSessionTest::cancelCommitsNothing()
{
    begin(QStringLiteral("1"), 50);
    m_session->drag(210);
    m_session->cancel();
    QVERIFY(!m_session->draggedID());
    m_session->end();
    QVERIFY(m_commits.empty());
}

void WatchlistReorderSessionTest::cancelDuringSettlingCommitsNothing()
{
    begin(QStringLiteral("1"), 50);
    m_session->drag(140);
    m_session->end();
    m_session->cancel();
    QVERIFY(!m_session->isSettling());
    // The next drag's settling ends after the canceled one would have.
    begin(QStringLiteral("2"), 95);
    m_session->drag(185);
    m_session->end();
    QTRY_COMPARE(m_commits.size(), std::size_t(1));
    QCOMPARE(m_commits.front(), reordered(m_ids, 2, 4));
}

void WatchlistReorderSessionTest::abandonEndsADragThatWasNotReleased()
{
    begin(QStringLiteral("1"), 50);
    m_session->drag(140);
    m_session->abandon();
    QVERIFY(!m_session->draggedID());
    begin(QStringLiteral("2"), 95);
    m_session->drag(185);
    m_session->end();
    m_session->abandon();
    QVERIFY(m_session->isSettling());
    QTRY_COMPARE(m_commits.size(), std::size_t(1));
    QCOMPARE(m_commits.front(), reordered(m_ids, 2, 4));
}

void WatchlistReorderSessionTest::aSessionThatIsGoneCommitsNothing()
{
    begin(QStringLiteral("1"), 50);
    m_session->drag(140);
    m_session->end();
    m_session.reset();
    WatchlistReorderSession other;
    other.setViewportHeight(220);
    bool done = false;
    other.begin(QStringLiteral("0"), 0, 10, m_ids, [&](const QStringList &) { done = true; });
    other.drag(60);
    other.end();
    QTRY_VERIFY(done);
    QVERIFY(m_commits.empty());
}

void WatchlistReorderSessionTest::aCommitMayStartTheNextDrag()
{
    m_session->setReduceMotion(true);
    m_session->begin(QStringLiteral("0"), 0, 10, m_ids,
                     [this](const QStringList &ids) { m_session->begin(QStringLiteral("5"), 5, 10, ids, nullptr); });
    m_session->drag(60);
    m_session->end();
    QCOMPARE(m_session->draggedID(), std::optional(QStringLiteral("5")));
}

void WatchlistReorderSessionTest::oneRowStays()
{
    m_ids = numbered(1);
    m_session->setReduceMotion(true);
    begin(QStringLiteral("0"), 10);
    m_session->drag(200);
    QCOMPARE(m_session->floatingY(), 0.0);
    QCOMPARE(m_session->insertionIndex(), 0);
    m_session->end();
    QVERIFY(m_commits.empty());
}

void WatchlistReorderSessionTest::scrollsUpUntilTheTop()
{
    m_session->setScrollOffset(100);
    begin(QStringLiteral("4"), 100);
    // Timers fire in the order of their times also when the machine is late: this one is older than the second step's.
    std::optional<std::size_t> stepsBeforeThePause;
    QTimer::singleShot(120, Qt::PreciseTimer, this, [&] { stepsBeforeThePause = m_scroller->steps.size(); });
    m_session->drag(10);
    QVERIFY(m_scroller->steps.empty());
    QTRY_COMPARE(m_scroller->steps.size(), std::size_t(2));
    QCOMPARE(stepsBeforeThePause, std::optional(std::size_t(1)));
    using Step = RecordingScroller::Step;
    QCOMPARE(m_scroller->steps.at(0), (Step{QStringLiteral("1"), ViewportEdge::top, 120}));
    QCOMPARE(m_scroller->steps.at(1), (Step{QStringLiteral("0"), ViewportEdge::top, 120}));
    QCOMPARE(m_scroller->offset, 0.0);
    // The insertion follows with the next move of the pointer.
    m_session->drag(9);
    QCOMPARE(m_session->insertionIndex(), 0);
}

void WatchlistReorderSessionTest::scrollsDownUntilTheEnd()
{
    m_session->setScrollOffset(132);
    begin(QStringLiteral("4"), 100);
    m_session->drag(215);
    QTRY_COMPARE(m_scroller->offset, 220.0);
    using Step = RecordingScroller::Step;
    QCOMPARE(m_scroller->steps, (std::vector{Step{QStringLiteral("8"), ViewportEdge::bottom, 120},
                                             Step{QStringLiteral("9"), ViewportEdge::bottom, 120}}));
}

void WatchlistReorderSessionTest::doesNotScrollAtTheEnd()
{
    m_session->setScrollOffset(219);
    begin(QStringLiteral("7"), 100);
    m_session->drag(215);
    m_session->setScrollOffset(0.5);
    m_session->drag(5);
    // A drag that does scroll shows that the loop had its time.
    m_session->setScrollOffset(100);
    m_session->drag(6);
    QTRY_VERIFY(!m_scroller->steps.empty());
    QCOMPARE(m_scroller->steps.front().id, QStringLiteral("1"));
}

void WatchlistReorderSessionTest::leavingTheEdgeStopsScrolling()
{
    m_session->setScrollOffset(180);
    begin(QStringLiteral("6"), 100);
    m_session->drag(10);
    QTRY_VERIFY(!m_scroller->steps.empty());
    const std::size_t steps = m_scroller->steps.size();
    m_session->drag(110);
    m_session->end();
    QTRY_VERIFY(!m_session->isSettling());
    QCOMPARE(m_scroller->steps.size(), steps);
}

void WatchlistReorderSessionTest::theOtherEdgeTurnsScrolling()
{
    m_session->setScrollOffset(100);
    begin(QStringLiteral("4"), 100);
    m_session->drag(10);
    QTRY_VERIFY(!m_scroller->steps.empty());
    QCOMPARE(m_scroller->steps.back().edge, ViewportEdge::top);
    m_session->drag(215);
    QTRY_COMPARE(m_scroller->steps.back().edge, ViewportEdge::bottom);
}

void WatchlistReorderSessionTest::releaseStopsScrolling()
{
    m_session->setScrollOffset(180);
    begin(QStringLiteral("6"), 100);
    m_session->drag(10);
    m_session->end();
    QTRY_VERIFY(!m_session->draggedID());
    QVERIFY(m_scroller->steps.empty());
}

void WatchlistReorderSessionTest::aListThatScrolledMovesTheSettlingRow()
{
    m_session->setScrollOffset(44);
    begin(QStringLiteral("1"), 10);
    m_session->drag(50);
    m_session->end();
    double lastY = 0;
    QObject::connect(m_session.get(), &WatchlistReorderSession::floatingYChanged, this, [&] {
        if (m_session->draggedID())
            lastY = m_session->floatingY();
    });
    QTRY_COMPARE(m_commits.size(), std::size_t(1));
    QCOMPARE(m_commits.front(), reordered(m_ids, 1, 2));
    QVERIFY(qAbs(lastY - 44) < 1);
}

void WatchlistReorderSessionTest::insertionIsToldOnlyWhenItChanges()
{
    QSignalSpy told(m_session.get(), &WatchlistReorderSession::insertionIndexChanged);
    begin(QStringLiteral("1"), 50);
    const auto before = told.size();
    m_session->drag(51);
    m_session->drag(55);
    QCOMPARE(told.size(), before);
    m_session->drag(94);
    QCOMPARE(told.size(), before + 1);
}

TICKWISE_TEST(WatchlistReorderSessionTest)
#include "WatchlistReorderSessionTest.moc"
