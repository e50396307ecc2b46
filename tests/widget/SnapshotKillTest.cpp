#include "doubles/TestProgram.h"
#include "widget/WidgetSnapshotStore.h"

#include "doubles/TestClock.h"

#include <QRandomGenerator>
#include <QTemporaryDir>

#include <csignal>
#include <random>
#include <set>

#include <sys/wait.h>
#include <unistd.h>

using namespace tickwise;
using namespace tickwise::test;

namespace {

constexpr int kills = 1000;
constexpr int numbersPerWriter = 1000;

/// A snapshot whose length differs from that of its neighbors and that tells its number.
WidgetSnapshot numbered(int number)
{
    WidgetSnapshot snapshot = makeWidgetSnapshot({}, {}, TestClock().now());
    snapshot.displayedCoinId = QString::number(number);
    snapshot.watchlist.assign(static_cast<std::size_t>(number * 37 % 200), snapshot.displayedCoinId);
    return snapshot;
}

[[noreturn]] void writeForEver(const WidgetSnapshotStore &store, int firstNumber)
{
    // Each writer takes other temporary names than the one before, as a program of its own would.
    QRandomGenerator::global()->discard(static_cast<unsigned>(firstNumber / numbersPerWriter));
    for (int number = firstNumber;; ++number) {
        if (!store.write(numbered(number)))
            _exit(1);
    }
}

/// Starts a writer and kills it after so many microseconds. The signal that ended it, or -1.
int killWriter(const WidgetSnapshotStore &store, int firstNumber, useconds_t delay)
{
    const pid_t writer = fork();
    if (writer == 0)
        writeForEver(store, firstNumber);
    usleep(delay);
    kill(writer, SIGKILL);
    int status = 0;
    if (writer < 0 || waitpid(writer, &status, 0) != writer || !WIFSIGNALED(status))
        return -1;
    return WTERMSIG(status);
}

} // namespace

class SnapshotKillTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyFileFoundAfterAKillDecodes();
};

void SnapshotKillTest::everyFileFoundAfterAKillDecodes()
{
    const QTemporaryDir directory;
    const WidgetSnapshotStore store{directory.path()};
    QVERIFY(store.write(numbered(0)));
    std::mt19937 random(20260131); // NOLINT: the same moments every time
    std::uniform_int_distribution<useconds_t> delay(200, 4000);
    constexpr std::size_t enough = 50;
    std::set<QString> found;
    for (int i = 0; i < kills || (found.size() <= enough && i < 5 * kills); ++i) {
        // On a slow machine the later writers live longer.
        const useconds_t life = delay(random) * useconds_t(1 + i / kills);
        QCOMPARE(killWriter(store, i * numbersPerWriter, life), SIGKILL);
        const Result<WidgetSnapshot> snapshot = store.read();
        QVERIFY2(snapshot, snapshot ? "" : qPrintable(description(snapshot.error())));
        QCOMPARE(*snapshot, numbered(snapshot->displayedCoinId.toInt()));
        found.insert(snapshot->displayedCoinId);
    }
    // Otherwise the writers did not get far enough for this to say anything.
    QVERIFY2(found.size() > enough, qPrintable(QString::number(found.size())));
    QVERIFY(store.write(numbered(7)));
    QCOMPARE(store.read().value(), numbered(7));
}

TICKWISE_TEST(SnapshotKillTest)
#include "SnapshotKillTest.moc"
