#include "platform/session/ProcessMemory.h"

#include "doubles/TestProgram.h"

#include <QFile>

#include <memory>
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

} // namespace

class ProcessMemoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void returnsFreeMemoryBelowWhatIsInUse();
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

TICKWISE_TEST(ProcessMemoryTest)
#include "ProcessMemoryTest.moc"
