#include "platform/session/packages/DesktopPackageInstaller.h"

#include "doubles/TestProgram.h"
#include "platform/Files.h"
#include "platform/session/packages/PackageOpening.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <optional>

using namespace tickwise;
using namespace tickwise::test;
using namespace std::chrono_literals;

namespace {

void putProgram(const QString &path, const QByteArray &content)
{
    put(path, content);
    QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

} // namespace

class DesktopPackageInstallerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void opensWithTheHandler();
    void nothingOpensIt_data();
    void nothingOpensIt();
    void aHandlerThatCannotStart();
    void aHandlerThatGoesOnHasOpenedIt();
    void replacesTheRunningAppImage();
    void otherPackagesOfAnAppImageAreOpened();
    void anAppImageThatCannotBeReplaced();
    void restarts();
    void startsAfterTheProcess();

private:
    QString file(const char *name) const { return m_directory->filePath(QString::fromLatin1(name)); }
    /// Programs that stand for the desktop's.
    void desktop(const QByteArray &handlerQuery, const QByteArray &opening) const;
    std::optional<Result<PackageInstallation>> install(const QString &appImage) const;

    std::unique_ptr<QTemporaryDir> m_directory;
    QByteArray m_path;
};

void DesktopPackageInstallerTest::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    m_path = qgetenv("PATH");
    putProgram(file("tickwise.deb"), "!<arch>\ndebian-binary");
}

void DesktopPackageInstallerTest::cleanup()
{
    qputenv("PATH", m_path);
}

void DesktopPackageInstallerTest::desktop(const QByteArray &handlerQuery, const QByteArray &opening) const
{
    putProgram(file("xdg-mime"), "#!/bin/sh\n" + handlerQuery);
    putProgram(file("xdg-open"), "#!/bin/sh\n" + opening);
    qputenv("PATH", QFile::encodeName(m_directory->path()) + ':' + m_path);
}

std::optional<Result<PackageInstallation>> DesktopPackageInstallerTest::install(const QString &appImage) const
{
    DesktopPackageInstaller installer(appImage, [] {});
    std::optional<Result<PackageInstallation>> answer;
    const Subscription installation =
        installer.install(file("tickwise.deb"), [&](const Result<PackageInstallation> &result) { answer = result; });
    if (answer)
        return std::nullopt;
    return QTest::qWaitFor([&] { return answer.has_value(); }) ? answer : std::nullopt;
}

void DesktopPackageInstallerTest::opensWithTheHandler()
{
    const QByteArray asked = QFile::encodeName(file("asked"));
    const QByteArray opened = QFile::encodeName(file("opened"));
    desktop("printf '%s' \"$*\" > '" + asked + "'; echo installer.desktop", "printf '%s' \"$*\" > '" + opened + "'");
    const auto result = install({});
    QVERIFY(result && result->has_value());
    QCOMPARE(**result, PackageInstallation::opened);
    QCOMPARE(contents(file("opened")), QFile::encodeName(file("tickwise.deb")));
    QVERIFY(contents(file("asked")).startsWith("query default application/"));
}

void DesktopPackageInstallerTest::nothingOpensIt_data()
{
    QTest::addColumn<QByteArray>("handlerQuery");
    QTest::addColumn<QByteArray>("opening");
    QTest::newRow("no handler for the type") << QByteArray("exit 0") << QByteArray("exit 0");
    QTest::newRow("opening fails") << QByteArray("echo installer.desktop") << QByteArray("exit 4");
    QTest::newRow("opening is killed") << QByteArray("echo installer.desktop") << QByteArray("kill -9 $$");
}

void DesktopPackageInstallerTest::nothingOpensIt()
{
    QFETCH(QByteArray, handlerQuery);
    QFETCH(QByteArray, opening);
    desktop(handlerQuery, opening);
    const auto result = install({});
    QVERIFY(result && !result->has_value());
    QVERIFY(description(result->error()).contains(file("tickwise.deb")));
    // A desktop without these programs.
    qputenv("PATH", "/nowhere");
    const auto without = install({});
    QVERIFY(without && !without->has_value());
}

void DesktopPackageInstallerTest::aHandlerThatCannotStart()
{
    const QString longerThanAnArgument(1 << 20, QLatin1Char('a'));
    std::optional<Result<void>> answer;
    const PackageOpening opening(longerThanAnArgument, 10min, [&](const Result<void> &result) { answer = result; });
    QVERIFY(!answer);
    QTRY_VERIFY(answer);
    QVERIFY(!answer->has_value());
}

void DesktopPackageInstallerTest::aHandlerThatGoesOnHasOpenedIt()
{
    const QByteArray ended = QFile::encodeName(file("ended"));
    const QByteArray proceed = QFile::encodeName(file("proceed"));
    desktop("echo installer.desktop", "while [ ! -e '" + proceed + "' ]; do sleep 0.02; done; echo > '" + ended + "'");
    std::optional<Result<void>> answer;
    {
        const PackageOpening opening(file("tickwise.deb"), 100ms, [&](const Result<void> &result) { answer = result; });
        QTRY_VERIFY(answer);
        QVERIFY(answer->has_value());
    }
    QVERIFY(!QFile::exists(file("ended")));
    putProgram(file("proceed"), {});
    QTRY_VERIFY(QFile::exists(file("ended")));
}

void DesktopPackageInstallerTest::replacesTheRunningAppImage()
{
    putProgram(file("tickwise.deb"), QByteArray("\x7f"
                                                "ELF\x02\x01\x01\x00"
                                                "AI\x02new",
                                                14));
    putProgram(file("Tickwise.AppImage"), "old");
    const auto result = install(file("Tickwise.AppImage"));
    QVERIFY(result && result->has_value());
    QCOMPARE(**result, PackageInstallation::replaced);
    QVERIFY(contents(file("Tickwise.AppImage")).endsWith("new"));
}

void DesktopPackageInstallerTest::otherPackagesOfAnAppImageAreOpened()
{
    desktop("echo installer.desktop", "exit 0");
    putProgram(file("Tickwise.AppImage"), "old");
    const auto result = install(file("Tickwise.AppImage"));
    QVERIFY(result && result->has_value());
    QCOMPARE(**result, PackageInstallation::opened);
    QCOMPARE(contents(file("Tickwise.AppImage")), QByteArray("old"));
}

void DesktopPackageInstallerTest::anAppImageThatCannotBeReplaced()
{
    putProgram(file("tickwise.deb"), QByteArray("\x7f"
                                                "ELF\x02\x01\x01\x00"
                                                "AI\x02new",
                                                14));
    const auto result = install(QStringLiteral("/dev/null/Tickwise.AppImage"));
    QVERIFY(result && !result->has_value());
}

void DesktopPackageInstallerTest::restarts()
{
    putProgram(file("Tickwise.AppImage"), "#!/bin/sh\necho > '" + QFile::encodeName(file("started")) + "'\n");
    int quits = 0;
    DesktopPackageInstaller installer(file("Tickwise.AppImage"), [&] { ++quits; });
    installer.restart();
    QCOMPARE(quits, 1);
    QVERIFY(!QTest::qWaitFor([&] { return QFile::exists(file("started")); }, 300)); // this process goes on
}

void DesktopPackageInstallerTest::startsAfterTheProcess()
{
    putProgram(file("next"), "#!/bin/sh\necho > '" + QFile::encodeName(file("started")) + "'\n");
    QProcess running;
    running.start(QStringLiteral("cat"), {});
    QVERIFY(running.waitForStarted());
    startAfterProcess(running.processId(), file("next"));
    QVERIFY(!QTest::qWaitFor([&] { return QFile::exists(file("started")); }, 300));
    running.closeWriteChannel();
    QVERIFY(running.waitForFinished());
    QTRY_VERIFY(QFile::exists(file("started")));
}

TICKWISE_TEST(DesktopPackageInstallerTest)
#include "DesktopPackageInstallerTest.moc"
