#include "platform/session/RunningProgram.h"

#include "doubles/TestProgram.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace tickwise;

class RunningProgramTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void isItsOwnFile();
    void isTheAppImageAroundIt();
    void inheritedAppImages_data();
    void inheritedAppImages();
    void snaps_data();
    void snaps();

private:
    static QString ownFolder() { return QCoreApplication::applicationDirPath(); }
};

void RunningProgramTest::cleanup()
{
    qunsetenv("APPIMAGE");
    qunsetenv("APPDIR");
    qunsetenv("SNAP");
}

void RunningProgramTest::isItsOwnFile()
{
    QCOMPARE(runningAppImage(), QString());
    QCOMPARE(runningProgram(), QCoreApplication::applicationFilePath());
    QVERIFY(!runsInSandbox());
}

void RunningProgramTest::isTheAppImageAroundIt()
{
    const QTemporaryDir directory;
    const QString image = directory.filePath(QStringLiteral("Tickwise.AppImage"));
    QFile file(image);
    QVERIFY(file.open(QIODevice::WriteOnly));
    const QString mount = directory.filePath(QStringLiteral("mount"));
    QVERIFY(QFile::link(QFileInfo(ownFolder()).path(), mount));
    qputenv("APPIMAGE", QFile::encodeName(image));
    qputenv("APPDIR", QFile::encodeName(mount));
    QCOMPARE(runningAppImage(), image);
    QCOMPARE(runningProgram(), image);
}

void RunningProgramTest::inheritedAppImages_data()
{
    QTest::addColumn<QString>("image");
    QTest::addColumn<QString>("folder");
    const QString image = QCoreApplication::applicationFilePath();
    QTest::newRow("image of another program") << image << QDir::tempPath();
    QTest::newRow("no folder") << image << QString();
    QTest::newRow("folder that is gone") << image << QStringLiteral("/tmp/.mount_gone");
    QTest::newRow("the root") << image << QStringLiteral("/");
    QTest::newRow("name that starts alike") << image << ownFolder().chopped(1);
    QTest::newRow("image that is gone") << QStringLiteral("/home/me/Tickwise.AppImage") << ownFolder();
    QTest::newRow("relative image") << QStringLiteral("Tickwise.AppImage") << ownFolder();
    QTest::newRow("image that is a folder") << ownFolder() << ownFolder();
}

void RunningProgramTest::inheritedAppImages()
{
    QFETCH(QString, image);
    QFETCH(QString, folder);
    qputenv("APPIMAGE", QFile::encodeName(image));
    qputenv("APPDIR", QFile::encodeName(folder));
    QCOMPARE(runningAppImage(), QString());
    QCOMPARE(runningProgram(), QCoreApplication::applicationFilePath());
}

void RunningProgramTest::snaps_data()
{
    QTest::addColumn<QString>("snap");
    QTest::addColumn<bool>("sandboxed");
    QTest::newRow("ours") << ownFolder() << true;
    QTest::newRow("with a slash at the end") << QString(ownFolder() + u'/') << true;
    QTest::newRow("another program's") << QDir::tempPath() << false;
    QTest::newRow("gone") << QStringLiteral("/snap/other/42") << false;
    QTest::newRow("the root") << QStringLiteral("/") << false;
    QTest::newRow("empty") << QString() << false;
}

void RunningProgramTest::snaps()
{
    QFETCH(QString, snap);
    QFETCH(bool, sandboxed);
    qputenv("SNAP", QFile::encodeName(snap));
    QCOMPARE(runsInSandbox(), sandboxed);
}

TICKWISE_TEST(RunningProgramTest)
#include "RunningProgramTest.moc"
