#include "platform/session/ProcessMemory.h"
#include "doubles/TestProgram.h"

#include <QBuffer>
#include <QFile>
#include <QLocale>

using namespace tickwise;

namespace {

/// Kilobytes of the unwritable mappings of a library that are in this process's memory.
int residentKilobytes(const QByteArray &library)
{
    QFile smaps(QStringLiteral("/proc/self/smaps"));
    if (!smaps.open(QIODevice::ReadOnly))
        qFatal("no smaps");
    int total = 0;
    bool counts = false;
    for (QByteArray line = smaps.readLine(); !line.isEmpty(); line = smaps.readLine()) {
        const QByteArrayList fields = line.simplified().split(' ');
        if (!fields.front().endsWith(':'))
            counts = line.contains(library) && !fields.value(1).contains('w');
        else if (counts && fields.front() == "Rss:")
            total += fields.value(1).toInt();
    }
    return total;
}

} // namespace

class ProcessMemoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanMappings_data();
    void cleanMappings();
    void releasesTheUnwrittenPagesOfLibraries();
};

void ProcessMemoryTest::cleanMappings_data()
{
    QTest::addColumn<QByteArray>("smaps");
    QTest::addColumn<bool>("isClean");
    const QByteArray file = " 00001000 fd:01 42      /usr/lib/libfoo.so.1\n";
    const QByteArray untouched = "Rss:  8 kB\nAnonymous:             0 kB\nSwap:  0 kB\nVmFlags: rd ex mr mw me\n";
    const QByteArray touched = "Rss:  8 kB\nAnonymous:             4 kB\nSwap:  0 kB\nVmFlags: rd mr mw me ac\n";
    const QByteArray swapped = "Rss:  0 kB\nAnonymous:             0 kB\nSwap:  8 kB\nVmFlags: rd mr mw me ac\n";
    QTest::newRow("code") << "1000-3000 r-xp" + file + untouched << true;
    QTest::newRow("constants") << "1000-3000 r--p" + file + untouched << true;
    QTest::newRow("shared file") << "1000-3000 r--s" + file + untouched << true;
    QTest::newRow("a path with a space") << "1000-3000 r--p 0 fd:01 42 /opt/my programs/x\n" + untouched << true;
    QTest::newRow("a file that is replaced")
        << "1000-3000 r-xp 0 fd:01 42 /usr/lib/libfoo.so.1 (deleted)\n" + untouched << true;
    QTest::newRow("sealed relocations") << "1000-3000 r--p" + file + touched << false;
    QTest::newRow("relocations swapped out") << "1000-3000 r--p" + file + swapped << false;
    QTest::newRow("patched code") << "1000-3000 r-xp" + file + touched << false;
    QTest::newRow("data") << "1000-3000 rw-p" + file + untouched << false;
    QTest::newRow("guard") << "1000-3000 ---p" + file + untouched << false;
    QTest::newRow("no file") << "1000-3000 r--p 00000000 00:00 0 \n" + untouched << false;
    QTest::newRow("kernel's") << "1000-3000 r-xp 00000000 00:00 0                  [vdso]\n" + untouched << false;
    QTest::newRow("no word of pages") << "1000-3000 r-xp" + file << false;
    QTest::newRow("nothing") << QByteArray() << false;
    QTest::newRow("nonsense")
        << QByteArray(
               "x-y r-xp 0 0 0 /a\nAnonymous: 0 kB\nSwap: 0 kB\n3000-1000 r-xp 0 0 0 /a\nAnonymous: 0 kB\nSwap: 0 kB\n")
        << false;
}

void ProcessMemoryTest::cleanMappings()
{
    QFETCH(QByteArray, smaps);
    QFETCH(bool, isClean);
    const std::vector<MemoryRange> expected =
        isClean ? std::vector<MemoryRange>{{0x1000, 0x2000}} : std::vector<MemoryRange>{};
    QBuffer text(&smaps);
    QVERIFY(text.open(QIODevice::ReadOnly));
    QVERIFY(cleanFileMappings(text) == expected);
}

void ProcessMemoryTest::releasesTheUnwrittenPagesOfLibraries()
{
    const int before = residentKilobytes("libQt6Core");
    releaseUnusedMemory();
    const int after = residentKilobytes("libQt6Core");
    QVERIFY2(before > 500, qPrintable(QString::number(before)));
    QVERIFY2(after < before / 2, qPrintable(QStringLiteral("%1 of %2").arg(after).arg(before)));
    // What was written at load time, such as the tables of virtual functions, is still as it was.
    QCOMPARE(QLocale::c().toString(1234.5, 'f', 1), QStringLiteral("1234.5"));
}

TICKWISE_TEST(ProcessMemoryTest)
#include "ProcessMemoryTest.moc"
