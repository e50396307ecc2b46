#include "platform/ProcessMemory.h"

#include <QBuffer>
#include <QFile>
#include <QTemporaryFile>
#include <QTest>

#include <sys/mman.h>

using namespace tickwise;

namespace {

constexpr std::size_t length = 256 * 1024;
constexpr std::size_t page = 4096;

/// A file of pages of 'a', mapped as private memory.
class MappedFile
{
public:
    MappedFile()
    {
        if (!m_file.open() || m_file.write(QByteArray(length, 'a')) != static_cast<qint64>(length) || !m_file.flush())
            qFatal("no file");
        void *const mapped = mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_PRIVATE, m_file.handle(), 0);
        if (mapped == MAP_FAILED)
            qFatal("no mapping");
        m_bytes = static_cast<volatile char *>(mapped);
    }
    ~MappedFile() { munmap(address(), length); }
    Q_DISABLE_COPY_MOVE(MappedFile)

    void write(char value) { m_bytes[page] = value; }
    char written() const { return m_bytes[page]; }
    void seal() { mprotect(address(), length, PROT_READ); }
    bool touch() const
    {
        bool same = true;
        for (std::size_t at = 0; at < length; at += page)
            same = same && (m_bytes[at] == 'a' || at == page);
        return same;
    }
    std::size_t residentPages() const
    {
        QFile smaps(QStringLiteral("/proc/self/smaps"));
        if (!smaps.open(QIODevice::ReadOnly))
            qFatal("no smaps");
        const QByteArray all = smaps.readAll();
        const QByteArray begin = QByteArray::number(reinterpret_cast<qulonglong>(m_bytes), 16);
        const QByteArray inside = '\n' + begin + '-';
        const qsizetype mapping = all.startsWith(begin) ? 0 : all.indexOf(inside);
        const qsizetype rss = all.indexOf("Rss:", mapping);
        return all.mid(rss + 4, 20).simplified().split(' ').front().toULongLong() * 1024 / page;
    }

private:
    void *address() const { return const_cast<char *>(m_bytes); }

    QTemporaryFile m_file;
    volatile char *m_bytes = nullptr;
};

} // namespace

class ProcessMemoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanMappings_data();
    void cleanMappings();
    void releasesUnwrittenPagesOnly();
};

void ProcessMemoryTest::cleanMappings_data()
{
    QTest::addColumn<QByteArray>("smaps");
    QTest::addColumn<bool>("isClean");
    const QByteArray file = " 00001000 fd:01 42      /usr/lib/libfoo.so.1\n";
    const QByteArray untouched = "Rss:  8 kB\nAnonymous:             0 kB\nVmFlags: rd ex mr mw me\n";
    const QByteArray touched = "Rss:  8 kB\nAnonymous:             4 kB\nVmFlags: rd mr mw me ac\n";
    QTest::newRow("code") << "1000-3000 r-xp" + file + untouched << true;
    QTest::newRow("constants") << "1000-3000 r--p" + file + untouched << true;
    QTest::newRow("shared file") << "1000-3000 r--s" + file + untouched << true;
    QTest::newRow("a path with a space") << "1000-3000 r--p 0 fd:01 42 /opt/my programs/x\n" + untouched << true;
    QTest::newRow("a file that is replaced")
        << "1000-3000 r-xp 0 fd:01 42 /usr/lib/libfoo.so.1 (deleted)\n" + untouched << true;
    QTest::newRow("sealed relocations") << "1000-3000 r--p" + file + touched << false;
    QTest::newRow("patched code") << "1000-3000 r-xp" + file + touched << false;
    QTest::newRow("data") << "1000-3000 rw-p" + file + untouched << false;
    QTest::newRow("guard") << "1000-3000 ---p" + file + untouched << false;
    QTest::newRow("no file") << "1000-3000 r--p 00000000 00:00 0 \n" + untouched << false;
    QTest::newRow("kernel's") << "1000-3000 r-xp 00000000 00:00 0                  [vdso]\n" + untouched << false;
    QTest::newRow("no word of pages") << "1000-3000 r-xp" + file << false;
    QTest::newRow("nothing") << QByteArray() << false;
    QTest::newRow("nonsense") << QByteArray(
                                     "x-y r-xp 0 0 0 /a\nAnonymous: 0 kB\n3000-1000 r-xp 0 0 0 /a\nAnonymous: 0 kB\n")
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

void ProcessMemoryTest::releasesUnwrittenPagesOnly()
{
    MappedFile untouched;
    untouched.seal();
    MappedFile written;
    written.write('b');
    written.seal();
    QVERIFY(untouched.touch());
    QVERIFY(written.touch());
    QCOMPARE(untouched.residentPages(), length / page);

    releaseUnusedMemory();
    QCOMPARE(untouched.residentPages(), std::size_t(0));
    QCOMPARE(written.written(), 'b');
    QVERIFY(untouched.touch());
    QVERIFY(written.touch());
}

QTEST_GUILESS_MAIN(ProcessMemoryTest)
#include "ProcessMemoryTest.moc"
