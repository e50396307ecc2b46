#include "widget/WidgetSnapshotStore.h"

#include "doubles/FullDisk.h"
#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <limits>

namespace {

int waitsForTheDisk = 0; ///< how often something waited until a file was on the disk

} // namespace

// These stand in for the C library's in the whole program.
extern "C" int fsync(int)
{
    ++waitsForTheDisk;
    return 0;
}

extern "C" int fdatasync(int)
{
    ++waitsForTheDisk;
    return 0;
}

using namespace tickwise;
using namespace tickwise::test;

namespace {

WidgetSnapshot snapshotOf(double price)
{
    WidgetSnapshot snapshot = makeWidgetSnapshot({}, {}, TestClock().now());
    snapshot.quotes[QStringLiteral("bitcoin")] = {price, std::nullopt};
    return snapshot;
}

void makeFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("%s cannot be made", qPrintable(path));
}

} // namespace

class WidgetSnapshotStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void absentDirectoryDoesNothingAndSucceeds();
    void makesTheDirectories();
    void replacesTheFileAndLeavesNothingElse();
    void readerKeepsTheOldFileWhileANewOneIsWritten();
    void doesNotWaitForTheDisk();
    void failsWhereTheDirectoryCannotBeMade();
    void fullDiskLeavesTheOldFile();
    void failedEncodingLeavesTheOldFile();
    void readsNothingWithoutAFile();

private:
    QTemporaryDir m_directory;
};

void WidgetSnapshotStoreTest::absentDirectoryDoesNothingAndSucceeds()
{
    const WidgetSnapshotStore store;
    QVERIFY(store.write(snapshotOf(1)));
    QVERIFY(!store.path());
    QVERIFY(!store.read());
}

void WidgetSnapshotStoreTest::makesTheDirectories()
{
    const WidgetSnapshotStore store{m_directory.filePath(QStringLiteral("deep/deeper"))};
    QVERIFY(store.write(snapshotOf(1)));
    QCOMPARE(*store.path(), m_directory.filePath(QStringLiteral("deep/deeper/widget-snapshot.json")));
    QCOMPARE(store.read().value(), snapshotOf(1));
}

void WidgetSnapshotStoreTest::replacesTheFileAndLeavesNothingElse()
{
    const WidgetSnapshotStore store{m_directory.filePath(QStringLiteral("replace"))};
    QVERIFY(store.write(snapshotOf(1000000)));
    QVERIFY(store.write(snapshotOf(2)));
    QFile file(*store.path());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), encodeWidgetSnapshot(snapshotOf(2)).value());
    QCOMPARE(QDir(*store.directory).entryList(QDir::Files), QStringList(QStringLiteral("widget-snapshot.json")));
}

void WidgetSnapshotStoreTest::readerKeepsTheOldFileWhileANewOneIsWritten()
{
    const WidgetSnapshotStore store{m_directory.filePath(QStringLiteral("reader"))};
    QVERIFY(store.write(snapshotOf(1)));
    QFile reader(*store.path());
    QVERIFY(reader.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    QVERIFY(store.write(snapshotOf(2)));
    QCOMPARE(decodeWidgetSnapshot(reader.readAll()).value(), snapshotOf(1));
}

void WidgetSnapshotStoreTest::doesNotWaitForTheDisk()
{
    QCOMPARE(fsync(-1) + fdatasync(-1), 0);
    QCOMPARE(waitsForTheDisk, 2);
    QVERIFY(WidgetSnapshotStore{m_directory.filePath(QStringLiteral("sync"))}.write(snapshotOf(1)));
    QCOMPARE(waitsForTheDisk, 2);
}

void WidgetSnapshotStoreTest::failsWhereTheDirectoryCannotBeMade()
{
    const QString file = m_directory.filePath(QStringLiteral("file"));
    makeFile(file);
    const Result<void> written = WidgetSnapshotStore{file + QStringLiteral("/below")}.write(snapshotOf(1));
    QVERIFY(!written);
    QCOMPARE(description(written.error()),
             file + QStringLiteral("/below/widget-snapshot.json: its folder cannot be made"));
}

void WidgetSnapshotStoreTest::fullDiskLeavesTheOldFile()
{
    const WidgetSnapshotStore store{m_directory.filePath(QStringLiteral("full"))};
    QVERIFY(store.write(snapshotOf(1)));
    {
        const FullDisk full(10);
        QVERIFY(!store.write(snapshotOf(2)));
    }
    QCOMPARE(store.read().value(), snapshotOf(1));
    QCOMPARE(QDir(*store.directory).entryList(QDir::Files | QDir::Hidden),
             QStringList(QStringLiteral("widget-snapshot.json")));
}

void WidgetSnapshotStoreTest::failedEncodingLeavesTheOldFile()
{
    const WidgetSnapshotStore store{m_directory.filePath(QStringLiteral("encoding"))};
    QVERIFY(store.write(snapshotOf(1)));
    QVERIFY(!store.write(snapshotOf(std::numeric_limits<double>::infinity())));
    QCOMPARE(store.read().value(), snapshotOf(1));
}

void WidgetSnapshotStoreTest::readsNothingWithoutAFile()
{
    QVERIFY(!WidgetSnapshotStore{m_directory.filePath(QStringLiteral("nothing"))}.read());
}

TICKWISE_TEST(WidgetSnapshotStoreTest)
#include "WidgetSnapshotStoreTest.moc"
