#include "platform/storage/AppGroupContainer.h"

#include "doubles/TestProgram.h"
#include "platform/Files.h"
#include "support/files/WholeFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <sys/stat.h>

using namespace tickwise;
using namespace tickwise::test;

namespace {

const QString group = QStringLiteral("group.com.pelmo.tickwise");

} // namespace

class AppGroupContainerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void hasItsPathBeforeItIsMade();
    void isMadeForTheUserAlone();
    void isMadeWithItsParents();
    void isFoundAgainAsItIs();
    void isMadeAnewWithItsMode();
    void relativeDataHomeIsIgnored();
    void cannotBeHad_data();
    void cannotBeHad();
    void otherNames_data();
    void otherNames();

private:
    std::unique_ptr<QTemporaryDir> m_home;
    QByteArray m_dataHome;
};

void AppGroupContainerTest::init()
{
    m_dataHome = qgetenv("XDG_DATA_HOME");
    m_home = std::make_unique<QTemporaryDir>();
    QVERIFY(m_home->isValid());
    qputenv("XDG_DATA_HOME", m_home->path().toUtf8());
}

void AppGroupContainerTest::cleanup()
{
    qputenv("XDG_DATA_HOME", m_dataHome);
    m_home.reset();
}

void AppGroupContainerTest::hasItsPathBeforeItIsMade()
{
    QCOMPARE(appGroupContainerPath(group), std::optional(m_home->filePath(group)));
    QVERIFY(!QFileInfo::exists(m_home->filePath(group)));
    QCOMPARE(appGroupContainerPath(QStringLiteral("../elsewhere")), std::nullopt);
}

void AppGroupContainerTest::isMadeForTheUserAlone()
{
    const mode_t before = ::umask(0);
    const std::optional<QString> path = appGroupContainer(group);
    ::umask(before);
    QCOMPARE(path, std::optional(m_home->filePath(group)));
    QVERIFY(QFileInfo(*path).isDir());
    QCOMPARE(mode(*path), 0700U);
}

void AppGroupContainerTest::isMadeWithItsParents()
{
    qputenv("XDG_DATA_HOME", m_home->filePath(QStringLiteral("a/b")).toUtf8());
    const std::optional<QString> path = appGroupContainer(group);
    QCOMPARE(path, std::optional(m_home->filePath(QStringLiteral("a/b/") + group)));
    QVERIFY(QFileInfo(*path).isDir());
    QCOMPARE(mode(m_home->filePath(QStringLiteral("a"))), 0700U);
    QCOMPARE(mode(*path), 0700U);
}

void AppGroupContainerTest::isMadeAnewWithItsMode()
{
    const QString path = appGroupContainer(group).value();
    QVERIFY(QDir().rmdir(path));
    QVERIFY(writeWholeFile(path + QStringLiteral("/CoinLogos/bitcoin.img"), "logo").has_value());
    QCOMPARE(mode(path), 0700U);
    QVERIFY(QDir(path).removeRecursively());
    QCOMPARE(appGroupContainer(group), std::optional(path));
    QCOMPARE(mode(path), 0700U);
}

void AppGroupContainerTest::relativeDataHomeIsIgnored()
{
    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", m_home->path().toUtf8());
    qputenv("XDG_DATA_HOME", "relative/data");
    const std::optional<QString> path = appGroupContainer(group);
    qputenv("HOME", home);
    QCOMPARE(path, std::optional(m_home->filePath(QStringLiteral(".local/share/") + group)));
    QVERIFY(!QFileInfo::exists(QStringLiteral("relative")));
}

void AppGroupContainerTest::isFoundAgainAsItIs()
{
    const QString path = appGroupContainer(group).value();
    QFile file(path + QStringLiteral("/kept"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(QFile::setPermissions(path, QFile::Permissions(0x7755)));
    const unsigned before = mode(path);
    QCOMPARE(appGroupContainer(group), std::optional(path));
    QCOMPARE(mode(path), before);
    QVERIFY(QFile::exists(file.fileName()));
}

void AppGroupContainerTest::cannotBeHad_data()
{
    QTest::addColumn<QString>("home");
    QTest::newRow("below a file") << QStringLiteral("/dev/null");
    QTest::newRow("file system without folders") << QStringLiteral("/proc");
}

void AppGroupContainerTest::cannotBeHad()
{
    QFETCH(QString, home);
    qputenv("XDG_DATA_HOME", home.toUtf8());
    QVERIFY(!appGroupContainer(group));
    // A file in the folder's place is no folder either.
    qputenv("XDG_DATA_HOME", m_home->path().toUtf8());
    QFile file(m_home->filePath(group));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(!appGroupContainer(group));
}

void AppGroupContainerTest::otherNames_data()
{
    QTest::addColumn<QString>("id");
    QTest::newRow("empty") << QString();
    QTest::newRow("parent") << QStringLiteral("..");
    QTest::newRow("here") << QStringLiteral(".");
    QTest::newRow("outside") << QStringLiteral("../elsewhere");
    QTest::newRow("absolute") << QStringLiteral("/tmp");
}

void AppGroupContainerTest::otherNames()
{
    QFETCH(QString, id);
    QVERIFY(!appGroupContainer(id));
    QVERIFY(QDir(m_home->path()).isEmpty());
}

TICKWISE_TEST(AppGroupContainerTest)
#include "AppGroupContainerTest.moc"
