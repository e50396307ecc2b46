#include "platform/session/DesktopLoginItem.h"

#include "doubles/LogCapture.h"
#include "doubles/PrivateBus.h"
#include "doubles/TestProgram.h"
#include "platform/Files.h"
#include "platform/dbus/BusCall.h"
#include "platform/dbus/SessionBus.h"
#include "ui/LaunchAtLoginService.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <optional>

#include <sys/stat.h>

using namespace tickwise;
using namespace tickwise::test;

namespace {

QString loginApplicationId()
{
    return QStringLiteral("com.pelmo.tickwise.test");
}

QString reason()
{
    return QStringLiteral("because");
}

/// The one result of a call, with the proof that it did not come inside the call.
std::optional<Result<void>> resultOf(LoginItem &item, bool registered)
{
    std::optional<Result<void>> answer;
    int answers = 0;
    item.setRegistered(registered, [&](const Result<void> &result) {
        answer = result;
        ++answers;
    });
    if (answers != 0)
        return std::nullopt;
    if (!QTest::qWaitFor([&] { return answers > 0; }) || answers != 1)
        return std::nullopt;
    return answer;
}

QString failureText(const std::optional<Result<void>> &result)
{
    if (!result)
        return QStringLiteral("no answer");
    return *result ? QStringLiteral("success") : description(result->error());
}

/// A Background portal whose user decides at once.
class FakeBackgroundPortal : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Background")

public:
    enum class Behaviour
    {
        grants,
        grantsBeforeTheReply,
        grantsElsewhere,
        doesNotGrant,
        refuses,
        fails,
        ends,
        neverResponds
    };

    FakeBackgroundPortal(QDBusConnection bus, Behaviour behaviour)
        : m_bus(std::move(bus))
        , m_behaviour(behaviour)
    {
        m_bus.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), this, QDBusConnection::ExportAllSlots);
        m_bus.registerService(service());
    }

    QVariantMap options;

    static QString service() { return QStringLiteral("org.freedesktop.portal.Desktop"); }

public Q_SLOTS:
    QDBusObjectPath RequestBackground(const QString &, const QVariantMap &given, const QDBusMessage &message)
    {
        options = given;
        const QString sender = message.service().mid(1).replace(u'.', u'_');
        QString path = QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2")
                           .arg(sender, given.value(QStringLiteral("handle_token")).toString());
        if (m_behaviour == Behaviour::grantsElsewhere)
            path += QStringLiteral("_elsewhere");
        if (m_behaviour == Behaviour::grantsBeforeTheReply)
            respond(message.service(), path);
        else if (m_behaviour == Behaviour::ends)
            m_bus.unregisterService(service());
        else if (m_behaviour == Behaviour::fails)
            refuseCall(message);
        else if (m_behaviour != Behaviour::neverResponds)
            QTimer::singleShot(50, this, [this, to = message.service(), path] { respond(to, path); });
        return QDBusObjectPath(path);
    }

private:
    void refuseCall(const QDBusMessage &message)
    {
        message.setDelayedReply(true);
        m_bus.send(message.createErrorReply(QDBusError::AccessDenied, QStringLiteral("not here")));
    }

    void respond(const QString &to, const QString &path)
    {
        QDBusMessage response = QDBusMessage::createTargetedSignal(
            to, path, QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"));
        const bool wanted = options.value(QStringLiteral("autostart")).toBool();
        const bool granted = m_behaviour == Behaviour::doesNotGrant ? !wanted : wanted;
        const QVariantMap results{{QStringLiteral("background"), true}, {QStringLiteral("autostart"), granted}};
        m_bus.send(response << (m_behaviour == Behaviour::refuses ? 1U : 0U) << results);
    }

    QDBusConnection m_bus;
    Behaviour m_behaviour;
};

} // namespace

class DesktopLoginItemTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void writesAndRemovesTheFile();
    void execQuoting_data();
    void execQuoting();
    void oddProgramPathsAreValidAndRun_data();
    void oddProgramPathsAreValidAndRun();
    void followsTheProgram();
    void staysSwitchedOff_data();
    void staysSwitchedOff();
    void entriesThatAreNotOurs_data();
    void entriesThatAreNotOurs();
    void aPipeIsNotOurs();
    void anOverlongEntryIsNotOurs();
    void respectsTheConfigurationFolder();
    void removingNothingIsASuccess();
    void fileInTheWayOfTheFolder();
    void folderInTheWayOfTheFile();
    void failureIsOneLogLine();
    void successIsNotLogged();
    void portal_data();
    void portal();
    void portalIsTold();
    void portalStartsTheProgramOfTheSandbox();
    void portalWithoutTheMethod();
    void portalThatIsReplaced();
    void noPortal();
    void noSessionBus();
    void sessionBusThatEndsMeanwhile();
    void sessionBusThatEndsBeforeTheUserDecides();
    void sessionBusThatReturned();
    void deafSessionBusBlocksNothing();
    void kindFollowsTheSandbox();

private:
    AutostartLoginItem item(const QString &program) const { return {loginApplicationId(), program, m_folder}; }

    std::unique_ptr<QTemporaryDir> m_directory;
    QString m_folder;
    QString m_file;
};

void DesktopLoginItemTest::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    m_folder = m_directory->filePath(QStringLiteral("config/autostart"));
    m_file = m_folder + QStringLiteral("/com.pelmo.tickwise.test.desktop");
}

void DesktopLoginItemTest::writesAndRemovesTheFile()
{
    AutostartLoginItem login = item(QStringLiteral("/usr/bin/tickwise"));
    QCOMPARE(failureText(resultOf(login, true)), QStringLiteral("success"));
    QCOMPARE(contents(m_file),
             QByteArray("[Desktop Entry]\nType=Application\nName=Tickwise\nExec=\"/usr/bin/tickwise\"\n"
                        "Icon=com.pelmo.tickwise.test\nTerminal=false\nStartupNotify=false\nX-Tickwise-LoginItem=true\n"
                        "X-GNOME-Autostart-enabled=true\n"));
    QCOMPARE(QDir(m_folder).entryList(QDir::Files).size(), 1);
    QCOMPARE(failureText(resultOf(login, false)), QStringLiteral("success"));
    QVERIFY(!QFile::exists(m_file));
}

void DesktopLoginItemTest::execQuoting_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("exec");
    const auto row = [](const char *name, const char *program, const char *exec) {
        QTest::newRow(name) << QString::fromUtf8(program) << QString::fromUtf8(exec);
    };
    row("plain", "/usr/bin/tickwise", R"("/usr/bin/tickwise")");
    row("space", "/opt/my apps/tickwise", R"("/opt/my apps/tickwise")");
    row("dollar", "/opt/$HOME/t", R"("/opt/\\$HOME/t")");
    row("backtick", "/opt/`id`/t", R"("/opt/\\`id\\`/t")");
    row("double quote", "/opt/a\"b/t", R"("/opt/a\\"b/t")");
    row("single quote", "/opt/a'b/t", R"("/opt/a'b/t")");
    row("backslash", "/opt/a\\b/t", R"("/opt/a\\\\b/t")");
    row("per cent", "/opt/100%u/t", R"(env "/opt/100%%u/t")");
    row("line end", "/opt/a\nb/t", R"("/opt/a\nb/t")");
    row("tab", "/opt/a\tb/t", R"("/opt/a\tb/t")");
    row("other scripts", "/opt/行情/t", R"("/opt/行情/t")");
}

void DesktopLoginItemTest::execQuoting()
{
    QFETCH(QString, program);
    QFETCH(QString, exec);
    QCOMPARE(desktopEntryExec(program), exec);
}

void DesktopLoginItemTest::oddProgramPathsAreValidAndRun_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << QStringLiteral("tickwise");
    QTest::newRow("everything") << QStringLiteral("a b $HOME `id` \"q\" 'q' \\ 100%u 行情; & | < > * ? # ( ) ~");
}

void DesktopLoginItemTest::oddProgramPathsAreValidAndRun()
{
    QFETCH(QString, name);
    const QString program = m_directory->filePath(name);
    const QString proof = m_directory->filePath(QStringLiteral("proof"));
    put(program, "#!/bin/sh\nprintf '%s' \"$#\" > '" + proof.toUtf8() + "'\n");
    QVERIFY(QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner));
    AutostartLoginItem login = item(program);
    QCOMPARE(failureText(resultOf(login, true)), QStringLiteral("success"));

    QProcess validator;
    validator.start(QStringLiteral("desktop-file-validate"), {m_file});
    QVERIFY2(validator.waitForFinished(10000), qPrintable(validator.errorString()));
    QCOMPARE(validator.readAll(), QByteArray());
    QCOMPARE(validator.exitCode(), 0);

    // Another implementation of the format has to find the same program in it.
    QProcess launcher;
    launcher.start(QStringLiteral("gio"), {QStringLiteral("launch"), m_file});
    QVERIFY2(launcher.waitForFinished(10000), qPrintable(launcher.errorString()));
    QCOMPARE(launcher.readAllStandardError(), QByteArray());
    QTRY_COMPARE(contents(proof), QByteArray("0"));
}

void DesktopLoginItemTest::followsTheProgram()
{
    AutostartLoginItem before = item(QStringLiteral("/opt/old/tickwise"));
    QCOMPARE(failureText(resultOf(before, true)), QStringLiteral("success"));
    AutostartLoginItem after = item(QStringLiteral("/opt/new/tickwise"));
    QCOMPARE(failureText(resultOf(after, true)), QStringLiteral("success"));
    QVERIFY(contents(m_file).contains("Exec=\"/opt/new/tickwise\"\n"));
    QVERIFY(!contents(m_file).contains("/opt/old"));
}

void DesktopLoginItemTest::staysSwitchedOff_data()
{
    QTest::addColumn<QByteArray>("from");
    QTest::addColumn<QByteArray>("to");
    const QByteArray enabled = "X-GNOME-Autostart-enabled=true\n";
    QTest::newRow("hidden") << enabled << QByteArray(enabled + "Hidden=true\n");
    QTest::newRow("hidden, with blanks") << enabled << QByteArray("Hidden = true\n" + enabled);
    QTest::newRow("not enabled") << enabled << QByteArray("X-GNOME-Autostart-enabled=false\n");
}

void DesktopLoginItemTest::staysSwitchedOff()
{
    QFETCH(QByteArray, from);
    QFETCH(QByteArray, to);
    AutostartLoginItem login = item(QStringLiteral("/usr/bin/tickwise"));
    QCOMPARE(failureText(resultOf(login, true)), QStringLiteral("success"));
    const QByteArray edited = contents(m_file).replace(from, to);
    put(m_file, edited);
    QCOMPARE(failureText(resultOf(login, true)), QStringLiteral("success"));
    QCOMPARE(contents(m_file), edited);
    AutostartLoginItem moved = item(QStringLiteral("/opt/new/tickwise"));
    QCOMPARE(failureText(resultOf(moved, true)), QStringLiteral("success"));
    const QByteArray text = contents(m_file);
    QVERIFY(text.contains("Exec=\"/opt/new/tickwise\"\n"));
    QCOMPARE(text.contains("Hidden=true\n"), to.contains("Hidden"));
    QCOMPARE(text.contains("X-GNOME-Autostart-enabled=false\n"), to.contains("=false"));
    QCOMPARE(text.count("X-GNOME-Autostart-enabled"), 1);
    QCOMPARE(failureText(resultOf(moved, false)), QStringLiteral("success"));
    QVERIFY(!QFile::exists(m_file));
}

void DesktopLoginItemTest::entriesThatAreNotOurs_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("startsUs");
    const QByteArray entry = "[Desktop Entry]\nType=Application\nName=Mine\n";
    QTest::newRow("other program") << QByteArray(entry + "Exec=/usr/bin/other\n") << false;
    QTest::newRow("our program") << QByteArray(entry + "Exec=\"/usr/bin/tickwise\"\n") << true;
    QTest::newRow("no entry") << QByteArray("hello\n") << false;
    QTest::newRow("empty file") << QByteArray() << false;
    QTest::newRow("mark in another group")
        << QByteArray(entry + "Exec=x\n[Desktop Action a]\nX-Tickwise-LoginItem=true\n") << false;
    QTest::newRow("mark in a comment") << QByteArray(entry + "Exec=x\n#X-Tickwise-LoginItem=true\n") << false;
    QTest::newRow("our program in another group")
        << QByteArray(entry + "Exec=x\n[Desktop Action a]\nExec=\"/usr/bin/tickwise\"\n") << false;
}

void DesktopLoginItemTest::entriesThatAreNotOurs()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, startsUs);
    QVERIFY(QDir().mkpath(m_folder));
    put(m_file, text);
    AutostartLoginItem login = item(QStringLiteral("/usr/bin/tickwise"));
    const QString added = failureText(resultOf(login, true));
    QVERIFY2(startsUs ? added == QStringLiteral("success") : added.contains(m_file), qPrintable(added));
    QCOMPARE(failureText(resultOf(login, false)), QStringLiteral("success"));
    QCOMPARE(contents(m_file), text);
}

void DesktopLoginItemTest::aPipeIsNotOurs()
{
    QVERIFY(QDir().mkpath(m_folder));
    QCOMPARE(::mkfifo(QFile::encodeName(m_file).constData(), 0600), 0);
    AutostartLoginItem login = item(QStringLiteral("/usr/bin/tickwise"));
    QVERIFY2(failureText(resultOf(login, true)).contains(m_file), "the failure names the file");
    QCOMPARE(failureText(resultOf(login, false)), QStringLiteral("success"));
    QVERIFY(QFile::exists(m_file));
}

void DesktopLoginItemTest::anOverlongEntryIsNotOurs()
{
    AutostartLoginItem login = item(QStringLiteral("/usr/bin/tickwise"));
    QCOMPARE(failureText(resultOf(login, true)), QStringLiteral("success"));
    const QByteArray text = contents(m_file) + QByteArray(64 * 1024, '#');
    put(m_file, text);
    AutostartLoginItem moved = item(QStringLiteral("/opt/new/tickwise"));
    QVERIFY2(failureText(resultOf(moved, true)).contains(m_file), "the failure names the file");
    QCOMPARE(failureText(resultOf(moved, false)), QStringLiteral("success"));
    QCOMPARE(contents(m_file), text);
}

void DesktopLoginItemTest::respectsTheConfigurationFolder()
{
    const QByteArray before = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_directory->path()));
    const QString folder = AutostartLoginItem::defaultDirectory();
    before.isNull() ? qunsetenv("XDG_CONFIG_HOME") : qputenv("XDG_CONFIG_HOME", before);
    QCOMPARE(folder, m_directory->filePath(QStringLiteral("autostart")));
}

void DesktopLoginItemTest::removingNothingIsASuccess()
{
    AutostartLoginItem login = item(QStringLiteral("/usr/bin/tickwise"));
    QCOMPARE(failureText(resultOf(login, false)), QStringLiteral("success"));
    QVERIFY(!QFile::exists(m_folder));
}

void DesktopLoginItemTest::fileInTheWayOfTheFolder()
{
    put(m_directory->filePath(QStringLiteral("config")), "not a folder");
    AutostartLoginItem login = item(QStringLiteral("/usr/bin/tickwise"));
    QVERIFY2(failureText(resultOf(login, true)).contains(m_folder), "the failure names the folder");
}

void DesktopLoginItemTest::folderInTheWayOfTheFile()
{
    QVERIFY(QDir().mkpath(m_file + QStringLiteral("/inside")));
    AutostartLoginItem login = item(QStringLiteral("/usr/bin/tickwise"));
    QVERIFY2(failureText(resultOf(login, true)).contains(m_file), "the failure names the file");
    QVERIFY2(failureText(resultOf(login, false)).contains(m_file), "the failure names the file");
}

void DesktopLoginItemTest::failureIsOneLogLine()
{
    put(m_directory->filePath(QStringLiteral("config")), "not a folder");
    AutostartLoginItem login = item(QStringLiteral("/usr/bin/tickwise"));
    LaunchAtLoginService service(login);
    const LogCapture log;
    service.setEnabled(true);
    QTRY_COMPARE(log.lines().size(), 1U);
    QCOMPARE(log.lines().at(0).type, QtWarningMsg);
    QCOMPARE(log.lines().at(0).category, QStringLiteral("com.pelmo.tickwise.LaunchAtLogin"));
    QVERIFY(log.lines().at(0).text.startsWith(QStringLiteral("Failed to update login item: ")));
    QVERIFY(log.lines().at(0).text.contains(m_folder));
}

void DesktopLoginItemTest::successIsNotLogged()
{
    AutostartLoginItem login = item(QStringLiteral("/usr/bin/tickwise"));
    LaunchAtLoginService service(login);
    const LogCapture log;
    service.setEnabled(true);
    QTRY_VERIFY(QFile::exists(m_file));
    service.setEnabled(false);
    QTRY_VERIFY(!QFile::exists(m_file));
    QCoreApplication::processEvents();
    QCOMPARE(log.lines().size(), 0U);
}

void DesktopLoginItemTest::portal_data()
{
    QTest::addColumn<int>("behaviour");
    QTest::addColumn<QString>("outcome");
    using Behaviour = FakeBackgroundPortal::Behaviour;
    const auto row = [](const char *name, Behaviour behaviour, const char *outcome) {
        QTest::newRow(name) << static_cast<int>(behaviour) << QString::fromUtf8(outcome);
    };
    row("grants", Behaviour::grants, "success");
    row("answers before the call returns", Behaviour::grantsBeforeTheReply, "success");
    row("answers at another path", Behaviour::grantsElsewhere, "success");
    row("the user refuses", Behaviour::refuses, "the request was refused");
    row("grants something else", Behaviour::doesNotGrant, "starting at login was not granted");
    row("refuses the call", Behaviour::fails, "not here");
    row("ends without an answer", Behaviour::ends, "the portal ended");
}

void DesktopLoginItemTest::portal()
{
    QFETCH(int, behaviour);
    QFETCH(QString, outcome);
    PrivateBus bus;
    FakeBackgroundPortal portal(bus.connect(), static_cast<FakeBackgroundPortal::Behaviour>(behaviour));
    const SessionBus session(bus.address());
    PortalLoginItem login(session, QStringLiteral("tickwise"), reason);
    const std::optional<Result<void>> result = resultOf(login, true);
    const QString text = failureText(result);
    QVERIFY2(text.contains(outcome), qPrintable(text));
    QVERIFY(*result || std::holds_alternative<DesktopServiceError>(result->error()));
}

void DesktopLoginItemTest::portalIsTold()
{
    PrivateBus bus;
    FakeBackgroundPortal portal(bus.connect(), FakeBackgroundPortal::Behaviour::grants);
    QString text = QStringLiteral("because");
    const SessionBus session(bus.address());
    PortalLoginItem login(session, QStringLiteral("tickwise"), [&] { return text; });
    QCOMPARE(failureText(resultOf(login, true)), QStringLiteral("success"));
    QCOMPARE(portal.options.value(QStringLiteral("autostart")), QVariant(true));
    QCOMPARE(portal.options.value(QStringLiteral("reason")), QVariant(QStringLiteral("because")));
    QCOMPARE(portal.options.value(QStringLiteral("commandline")).toStringList(),
             QStringList{QStringLiteral("tickwise")});
    text = QStringLiteral("because of another language");
    QCOMPARE(failureText(resultOf(login, false)), QStringLiteral("success"));
    QCOMPARE(portal.options.value(QStringLiteral("autostart")), QVariant(false));
    QCOMPARE(portal.options.value(QStringLiteral("reason")), QVariant(text));
}

void DesktopLoginItemTest::portalStartsTheProgramOfTheSandbox()
{
    PrivateBus bus;
    FakeBackgroundPortal portal(bus.connect(), FakeBackgroundPortal::Behaviour::grants);
    const SessionBus session(bus.address());
    const std::unique_ptr<LoginItem> login = makeLoginItem(loginApplicationId(), session, true, reason);
    QCOMPARE(failureText(resultOf(*login, true)), QStringLiteral("success"));
    QCOMPARE(portal.options.value(QStringLiteral("commandline")).toStringList(),
             QStringList{QStringLiteral("tickwise")});
    QCOMPARE(portal.options.value(QStringLiteral("reason")), QVariant(QStringLiteral("because")));
}

void DesktopLoginItemTest::portalWithoutTheMethod()
{
    PrivateBus bus;
    QDBusConnection other = bus.connect();
    QObject nothing;
    QVERIFY(other.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), &nothing));
    QVERIFY(other.registerService(FakeBackgroundPortal::service()));
    const SessionBus session(bus.address());
    PortalLoginItem login(session, QStringLiteral("tickwise"), reason);
    const QString text = failureText(resultOf(login, true));
    QVERIFY2(text.contains(QStringLiteral("org.freedesktop.portal.Background")), qPrintable(text));
}

void DesktopLoginItemTest::portalThatIsReplaced()
{
    constexpr uint allowReplacement = 1;
    constexpr uint replaceExisting = 2;
    const auto requestName = [](const QDBusConnection &bus, uint flag) {
        return bus.call(
            busCall(QStringLiteral("RequestName"), {FakeBackgroundPortal::service(), flag | busName::doNotQueue}));
    };
    PrivateBus bus;
    const QDBusConnection portalBus = bus.connect();
    FakeBackgroundPortal portal(portalBus, FakeBackgroundPortal::Behaviour::neverResponds);
    const SessionBus session(bus.address());
    PortalLoginItem login(session, QStringLiteral("tickwise"), reason);
    std::vector<Result<void>> answers;
    login.setRegistered(true, [&](const Result<void> &result) { answers.push_back(result); });
    QTRY_VERIFY(!portal.options.isEmpty());
    requestName(portalBus, allowReplacement);
    const QDBusMessage replaced = requestName(bus.connect(), replaceExisting);
    QCOMPARE(replaced.arguments().value(0), QVariant(busName::primaryOwner));
    QTRY_COMPARE(answers.size(), 1U);
    QVERIFY2(failureText(answers.front()).contains(QStringLiteral("the portal ended")),
             qPrintable(failureText(answers.front())));
}

void DesktopLoginItemTest::noPortal()
{
    PrivateBus bus;
    const SessionBus session(bus.address());
    PortalLoginItem login(session, QStringLiteral("tickwise"), reason);
    const QString text = failureText(resultOf(login, true));
    QVERIFY2(text.contains(QStringLiteral("org.freedesktop.portal.Background")), qPrintable(text));
}

void DesktopLoginItemTest::noSessionBus()
{
    const SessionBus noBus(QStringLiteral("unix:path=/nonexistent"));
    PortalLoginItem login(noBus, QStringLiteral("tickwise"), reason);
    const QString text = failureText(resultOf(login, true));
    QVERIFY2(text.contains(QStringLiteral("org.freedesktop.portal.Background")), qPrintable(text));
}

void DesktopLoginItemTest::sessionBusThatEndsMeanwhile()
{
    PrivateBus bus;
    FakeBackgroundPortal portal(bus.connect(), FakeBackgroundPortal::Behaviour::neverResponds);
    const SessionBus session(bus.address());
    PortalLoginItem login(session, QStringLiteral("tickwise"), reason);
    std::vector<Result<void>> answers;
    login.setRegistered(true, [&](const Result<void> &result) { answers.push_back(result); });
    QTRY_VERIFY(!portal.options.isEmpty());
    bus.stop();
    QTRY_COMPARE(answers.size(), 1U);
    QVERIFY(!answers.front());
}

void DesktopLoginItemTest::sessionBusThatEndsBeforeTheUserDecides()
{
    PrivateBus bus;
    const QDBusConnection portalBus = bus.connect();
    FakeBackgroundPortal portal(portalBus, FakeBackgroundPortal::Behaviour::neverResponds);
    const SessionBus session(bus.address());
    PortalLoginItem login(session, QStringLiteral("tickwise"), reason);
    std::vector<Result<void>> answers;
    login.setRegistered(true, [&](const Result<void> &result) { answers.push_back(result); });
    QTRY_VERIFY(!portal.options.isEmpty());
    // The bus has forwarded the reply when it answers the portal, and delivered it when it answers the session.
    QVERIFY(PrivateBus::settle(portalBus));
    QVERIFY(PrivateBus::settle(session.connection()));
    QCoreApplication::processEvents();
    QCOMPARE(answers.size(), 0U);
    bus.kill();
    QTRY_COMPARE(answers.size(), 1U);
    QVERIFY2(failureText(answers.front()).contains(QStringLiteral("the session bus ended")),
             qPrintable(failureText(answers.front())));
}

void DesktopLoginItemTest::sessionBusThatReturned()
{
    PrivateBus bus;
    SessionBus session(bus.address());
    PortalLoginItem login(session, QStringLiteral("tickwise"), reason);
    QSignalSpy connected(&session, &SessionBus::connected);
    bus.stop();
    bus.start();
    QTRY_COMPARE(connected.size(), 1);
    FakeBackgroundPortal portal(bus.connect(), FakeBackgroundPortal::Behaviour::grants);
    QCOMPARE(failureText(resultOf(login, true)), QStringLiteral("success"));
}

void DesktopLoginItemTest::deafSessionBusBlocksNothing()
{
    PrivateBus bus;
    FakeBackgroundPortal portal(bus.connect(), FakeBackgroundPortal::Behaviour::grants);
    const SessionBus session(bus.address());
    PortalLoginItem login(session, QStringLiteral("tickwise"), reason);
    std::vector<Result<void>> answers;
    bus.pause();
    QElapsedTimer asking;
    asking.start();
    login.setRegistered(true, [&](const Result<void> &result) { answers.push_back(result); });
    const qint64 blocked = asking.elapsed();
    bus.resume();
    QVERIFY2(blocked < 10000, "the library itself waits for 25 seconds");
    QTRY_COMPARE(answers.size(), 1U);
    QVERIFY(answers.front());
}

void DesktopLoginItemTest::kindFollowsTheSandbox()
{
    const SessionBus bus(QStringLiteral("unix:path=/nonexistent"));
    const std::unique_ptr<LoginItem> outside = makeLoginItem(loginApplicationId(), bus, false, reason);
    const std::unique_ptr<LoginItem> inside = makeLoginItem(loginApplicationId(), bus, true, reason);
    QVERIFY(dynamic_cast<AutostartLoginItem *>(outside.get()) != nullptr);
    QVERIFY(dynamic_cast<PortalLoginItem *>(inside.get()) != nullptr);
}

TICKWISE_TEST(DesktopLoginItemTest)
#include "DesktopLoginItemTest.moc"
