#include "platform/statusitem/StatusItemHost.h"

#include "doubles/TestProgram.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>

using namespace tickwise;

class StatusItemHostTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theProcessNamesTheHost_data();
    void theProcessNamesTheHost();
    void aHiddenProcessLeavesTheDesktopsName_data();
    void aHiddenProcessLeavesTheDesktopsName();
    void readsItsOwnProcess();
    void aLongCommandLineIsCutOff();
    void aProcessThatIsGoneIsEmpty();
};

void StatusItemHostTest::theProcessNamesTheHost_data()
{
    QTest::addColumn<QString>("executable");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<StatusItemHost>("host");
    const auto row = [](const char *executable, StatusItemHost host, const QStringList &arguments = {}) {
        QTest::addRow("%s", executable) << QString::fromLatin1(executable) << arguments << host;
    };
    row("waybar", StatusItemHost::waybar);
    row("mate-notification-area-applet", StatusItemHost::mate);
    row("notification-area-applet", StatusItemHost::mate);
    row("mate-notificati", StatusItemHost::mate);
    row("mate-panel", StatusItemHost::mate);
    row("xapp-sn-watcher", StatusItemHost::cinnamon);
    row("cinnamon", StatusItemHost::cinnamon);
    row("xfce4-panel", StatusItemHost::xfce);
    row("wrapper-2.0", StatusItemHost::xfce,
        {QStringLiteral("wrapper-2.0"), QStringLiteral("/usr/lib/xfce4/panel/plugins/libsystray.so")});
    row("wrapper-3.0", StatusItemHost::unknown, {QStringLiteral("wrapper-3.0")});
    row("file-viewer", StatusItemHost::unknown,
        {QStringLiteral("file-viewer"), QStringLiteral("/usr/lib/xfce4/panel/plugins/libsystray.so")});
    row("gnome-shell", StatusItemHost::gnome);
    row("ayatana-indicator-application-service", StatusItemHost::ayatana);
    row("ayatana-indicat", StatusItemHost::ayatana);
    row("indicator-application-service", StatusItemHost::ayatana);
    row("kded5", StatusItemHost::plasma);
    row("kded6", StatusItemHost::plasma);
    row("plasmashell", StatusItemHost::plasma);
    row("lxqt-panel", StatusItemHost::lxqt);
    row("swaybar", StatusItemHost::swaybar);
    row("something-else", StatusItemHost::unknown);
    row("way", StatusItemHost::unknown);
}

void StatusItemHostTest::theProcessNamesTheHost()
{
    QFETCH(QString, executable);
    QFETCH(QStringList, arguments);
    QTEST(hostFor({executable, arguments}, QStringLiteral("GNOME")), "host");
}

void StatusItemHostTest::aHiddenProcessLeavesTheDesktopsName_data()
{
    QTest::addColumn<QString>("desktop");
    QTest::addColumn<StatusItemHost>("host");
    QTest::newRow("GNOME") << QStringLiteral("GNOME") << StatusItemHost::gnome;
    QTest::newRow("a vendor's GNOME") << QStringLiteral("ubuntu:GNOME") << StatusItemHost::gnome;
    QTest::newRow("KDE") << QStringLiteral("KDE") << StatusItemHost::plasma;
    QTest::newRow("XFCE") << QStringLiteral("XFCE") << StatusItemHost::xfce;
    QTest::newRow("MATE") << QStringLiteral("MATE") << StatusItemHost::mate;
    QTest::newRow("LXQt") << QStringLiteral("LXQt") << StatusItemHost::lxqt;
    QTest::newRow("Cinnamon") << QStringLiteral("X-Cinnamon") << StatusItemHost::cinnamon;
    QTest::newRow("Cinnamon by its other name") << QStringLiteral("Cinnamon") << StatusItemHost::cinnamon;
    QTest::newRow("sway, whose bar may be any") << QStringLiteral("sway") << StatusItemHost::unknown;
    QTest::newRow("none") << QString() << StatusItemHost::unknown;
}

void StatusItemHostTest::aHiddenProcessLeavesTheDesktopsName()
{
    QFETCH(QString, desktop);
    QTEST(hostFor({}, desktop), "host");
}

void StatusItemHostTest::readsItsOwnProcess()
{
    const WatcherProcess process = watcherProcess(QCoreApplication::applicationPid());
    QStringList arguments = QCoreApplication::arguments();
    arguments.insert(1, QStringLiteral("StatusItemHostTest"));
    QCOMPARE(process.executable, QStringLiteral("platform_tests"));
    QCOMPARE(process.arguments, arguments);
    QCOMPARE(process.directory, QDir::currentPath());
}

void StatusItemHostTest::aLongCommandLineIsCutOff()
{
    const QString padding(100000, u'x');
    QProcess program;
    program.start(QStringLiteral("sh"), {QStringLiteral("-c"), QStringLiteral("echo; read line"), padding, padding});
    // A program that has just started has no command line yet.
    QVERIFY2(program.waitForReadyRead(), qPrintable(program.errorString()));
    const QStringList arguments = watcherProcess(program.processId()).arguments;
    program.closeWriteChannel();
    QVERIFY(program.waitForFinished());
    QCOMPARE(arguments.value(1), QStringLiteral("-c"));
    QCOMPARE(arguments.join(u'\0').size(), 64 * 1024);
}

void StatusItemHostTest::aProcessThatIsGoneIsEmpty()
{
    const WatcherProcess process = watcherProcess(-1);
    QCOMPARE(process.executable, QString());
    QCOMPARE(process.arguments, QStringList());
    QCOMPARE(process.directory, QString());
}

TICKWISE_TEST(StatusItemHostTest)
#include "StatusItemHostTest.moc"
