#include "platform/session/ProcessMemory.h"

#include "doubles/TestProgram.h"

#include <QFile>

#include <memory>
#include <thread>
#include <vector>

using namespace tickwise;

namespace {

/// What only this process holds in memory.
int anonymousKilobytes()
{
    QFile rollup(QStringLiteral("/proc/self/smaps_rollup"));
    if (!rollup.open(QIODevice::ReadOnly))
        qFatal("no memory figures");
    for (QByteArray line = rollup.readLine(); !line.isEmpty(); line = rollup.readLine()) {
        if (line.startsWith("Anonymous:"))
            return line.simplified().split(' ').at(1).toInt();
    }
    qFatal("no anonymous memory");
}

/// Whether the address is in the process's first heap, which the system grows in place.
bool isOnTheHeap(const void *address)
{
    QFile maps(QStringLiteral("/proc/self/maps"));
    if (!maps.open(QIODevice::ReadOnly))
        qFatal("no list of mappings");
    for (QByteArray line = maps.readLine(); !line.isEmpty(); line = maps.readLine()) {
        if (!line.contains("[heap]"))
            continue;
        const QByteArrayList ends = line.split(' ').front().split('-');
        const auto place = reinterpret_cast<quintptr>(address); // NOLINT(cppcoreguidelines-pro-type-reinterpret-cast)
        return place >= ends[0].toULongLong(nullptr, 16) && place < ends[1].toULongLong(nullptr, 16);
    }
    qFatal("no heap");
}

} // namespace

class ProcessMemoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void returnsFreeMemoryBelowWhatIsInUse();
    void threadsShareTheHeap();
};

void ProcessMemoryTest::returnsFreeMemoryBelowWhatIsInUse()
{
    keepMemoryOfPolls();
    using Block = std::array<char, 4096>;
    std::vector<std::unique_ptr<Block>> blocks;
    for (int i = 0; i < 8192; ++i) {
        blocks.push_back(std::make_unique<Block>());
        blocks.back()->fill('x');
    }
    // The last block keeps the allocator from shrinking the heap by itself.
    blocks.erase(blocks.begin(), blocks.end() - 1);
    const int before = anonymousKilobytes();
    releaseUnusedMemory();
    const int after = anonymousKilobytes();
    QVERIFY2(after < before - 24 * 1024, qPrintable(QStringLiteral("%1 of %2").arg(after).arg(before)));
}

void ProcessMemoryTest::threadsShareTheHeap()
{
    shareHeapAmongThreads();
    std::unique_ptr<char[]> block;
    std::thread([&block] { block = std::make_unique<char[]>(3000); }).join();
    QVERIFY(isOnTheHeap(block.get()));
}

TICKWISE_TEST(ProcessMemoryTest)
#include "ProcessMemoryTest.moc"
