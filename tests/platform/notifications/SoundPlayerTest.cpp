#include "platform/notifications/SoundPlayer.h"

#include "doubles/LogCapture.h"
#include "doubles/TestProgram.h"

#include <QDir>
#include <QElapsedTimer>

using namespace tickwise;
using namespace tickwise::test;

namespace {

const QString category = QStringLiteral("com.pelmo.tickwise.Notifications");

int threadCount()
{
    return int(QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size());
}

} // namespace

class SoundPlayerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("com.pelmo.tickwise.Notifications.debug=true"));
    }
    void failureIsOneDebugLine();
    void mayGoWhileASoundStarts();
};

void SoundPlayerTest::failureIsOneDebugLine()
{
    qputenv("CANBERRA_DRIVER", "no-such-driver");
    const LogCapture log;
    SoundPlayer player(QStringLiteral("Tickwise"), QStringLiteral("com.pelmo.tickwise"));
    player.play();
    player.play(); // while the first one starts
    QVERIFY(log.texts(category).isEmpty());
    QTRY_COMPARE(log.texts(category).size(), 1);
    QCOMPARE(log.texts(category).front(), QStringLiteral("Notification sound not played: No such driver"));
    QCOMPARE(log.lines().back().type, QtDebugMsg);
    player.play();
    QTRY_COMPARE(log.texts(category).size(), 2);
}

void SoundPlayerTest::mayGoWhileASoundStarts()
{
    qputenv("CANBERRA_DRIVER", "no-such-driver");
    const int threads = threadCount();
    const LogCapture log;
    std::make_unique<SoundPlayer>(QStringLiteral("Tickwise"), QStringLiteral("com.pelmo.tickwise"))->play();
    SoundPlayer other(QStringLiteral("Tickwise"), QStringLiteral("com.pelmo.tickwise"));
    other.play();
    QTRY_COMPARE(log.texts(category).size(), 1);
    QTRY_VERIFY(threadCount() <=
                threads); // the end of the process takes the libraries away from threads that still run
}

TICKWISE_TEST(SoundPlayerTest)
#include "SoundPlayerTest.moc"
