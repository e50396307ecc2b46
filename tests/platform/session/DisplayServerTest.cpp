#include "platform/session/DisplayServer.h"

#include "doubles/TestProgram.h"

#include <QElapsedTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QTemporaryDir>
#include <QThread>

#include <cstring>

using namespace tickwise;

/// A login as the rules see it.
struct Login
{
    QByteArray chosenPlatform;
    QByteArray sessionType;
    bool x11 = false;
    bool wayland = false;
    bool layerShell = false;
};

namespace {

/// Sets a variable, or removes it for none, until the end of the scope.
class Variable
{
public:
    Variable(const char *name, const std::optional<QByteArray> &value)
        : m_name(name)
        , m_before(current(name))
    {
        apply(value);
    }
    ~Variable() { apply(m_before); }
    Variable(const Variable &) = delete;
    Variable &operator=(const Variable &) = delete;

private:
    static std::optional<QByteArray> current(const char *name)
    {
        return qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name)) : std::nullopt;
    }

    void apply(const std::optional<QByteArray> &value) const
    {
        if (value)
            qputenv(m_name, *value);
        else
            qunsetenv(m_name);
    }

    const char *m_name;
    std::optional<QByteArray> m_before;
};

enum class Behaviour
{
    lists,
    hangs,
    breaks
};

QByteArray wordBytes(quint32 word)
{
    return QByteArray(reinterpret_cast<const char *>(&word), sizeof word);
}

quint32 wordAt(const QByteArray &bytes, qsizetype offset)
{
    quint32 word = 0;
    std::memcpy(&word, bytes.constData() + offset, sizeof word);
    return word;
}

QByteArray message(quint32 target, quint32 opcode, const QByteArray &body)
{
    return wordBytes(target) + wordBytes(static_cast<quint32>(8 + body.size()) << 16 | opcode) + body;
}

QByteArray globalEvent(quint32 registry, quint32 name, QByteArray interface)
{
    interface.append('\0');
    const quint32 length = static_cast<quint32>(interface.size());
    while (interface.size() % 4 != 0)
        interface.append('\0');
    return message(registry, 0, wordBytes(name) + wordBytes(length) + interface + wordBytes(1));
}

/// As much of a Wayland compositor as lists its globals, in a thread of its own because the probe blocks.
class FakeCompositor : public QThread
{
public:
    FakeCompositor(QString path, Behaviour behaviour, QList<QByteArray> interfaces)
        : m_path(std::move(path))
        , m_behaviour(behaviour)
        , m_interfaces(std::move(interfaces))
    {
        start();
        while (!m_listening)
            QThread::yieldCurrentThread();
    }

    ~FakeCompositor() override
    {
        m_ended = true;
        wait();
    }

private:
    void run() override
    {
        QLocalServer server;
        server.listen(m_path);
        m_listening = true;
        while (!m_ended && !server.waitForNewConnection(20)) {
        }
        const std::unique_ptr<QLocalSocket> client(server.nextPendingConnection());
        if (client && m_behaviour == Behaviour::lists)
            answer(*client);
        else if (client && m_behaviour == Behaviour::breaks)
            client->abort();
        while (!m_ended)
            QThread::msleep(5);
    }

    void answer(QLocalSocket &client)
    {
        // wl_display.get_registry and wl_display.sync, 12 bytes each; the new object's id is the last word of each.
        while (client.bytesAvailable() < 24 && client.waitForReadyRead(5000)) {
        }
        const QByteArray requests = client.readAll();
        const quint32 registry = wordAt(requests, 8);
        quint32 name = 1;
        for (const QByteArray &interface : m_interfaces)
            client.write(globalEvent(registry, name++, interface));
        client.write(message(wordAt(requests, 20), 0, wordBytes(0)));
        client.waitForBytesWritten(5000);
    }

    QString m_path;
    Behaviour m_behaviour;
    QList<QByteArray> m_interfaces;
    std::atomic<bool> m_listening = false;
    std::atomic<bool> m_ended = false;
};

} // namespace

class DisplayServerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decides_data();
    void decides();
    void listsTheCompositorsGlobals_data();
    void listsTheCompositorsGlobals();
    void noCompositorAtTheAddress();
    void hangingCompositorIsGivenUp();
    void compositorThatBreaksTheConnection();
    void deadXServer();
    void noXServer();
    void silentXServerIsGivenUp();
    void preparesTheEnvironment_data();
    void preparesTheEnvironment();
    void keepsTheUsersPlatform();
};

void DisplayServerTest::decides_data()
{
    QTest::addColumn<Login>("login");
    QTest::addColumn<DisplayDecision>("decision");
    QTest::addColumn<QString>("asked"); // c: the compositor, x: the X server, in order
    const auto row = [](const char *name, const Login &login, const DisplayDecision &decision, const char *asked) {
        QTest::newRow(name) << login << decision << QString::fromLatin1(asked);
    };
    const DisplayDecision xcb{DisplayBackend::xcb, false};
    const DisplayDecision layers{DisplayBackend::wayland, true};
    const DisplayDecision noLayers{DisplayBackend::wayland, false};
    const DisplayDecision none{DisplayBackend::none, false};
    const DisplayDecision chosen{DisplayBackend::chosenByUser, false};
    const DisplayDecision chosenLayers{DisplayBackend::chosenByUser, true};
    row("X11 session", {{}, "x11", true, false, false}, xcb, "x");
    row("X server, no session type", {{}, {}, true, false, false}, xcb, "cx");
    row("X11 session with a nested compositor", {{}, "x11", true, true, true}, xcb, "x");
    row("X11 session whose server is gone", {{}, "x11", false, true, true}, layers, "xc");
    row("the same without layer surfaces", {{}, "x11", false, true, false}, noLayers, "xc");
    row("Wayland with layer surfaces", {{}, "wayland", true, true, true}, layers, "c");
    row("the same started from a console", {{}, "tty", true, true, true}, layers, "c");
    row("Wayland without layer surfaces", {{}, "wayland", true, true, false}, xcb, "cx");
    row("the same without XWayland", {{}, "wayland", false, true, false}, noLayers, "cx");
    row("Wayland whose compositor hangs", {{}, "wayland", true, false, false}, xcb, "cx");
    row("nothing", {{}, {}, false, false, false}, none, "cx");
    row("nothing but a session type", {{}, "wayland", false, false, false}, none, "cx");
    row("nothing in an X11 session", {{}, "x11", false, false, false}, none, "xc");
    row("chosen: xcb", {"xcb", "wayland", true, true, true}, chosen, "");
    row("chosen: wayland", {"wayland", "wayland", true, true, true}, chosenLayers, "c");
    row("chosen: wayland-egl", {"wayland-egl", "wayland", true, true, true}, chosenLayers, "c");
    row("chosen: wayland, no layers", {"wayland", "wayland", true, true, false}, chosen, "c");
    row("chosen: offscreen, no display", {"offscreen", {}, false, false, false}, chosen, "");
}

void DisplayServerTest::decides()
{
    QFETCH(Login, login);
    QFETCH(DisplayDecision, decision);
    QString asked;
    const DisplayProbes probes{.askCompositor =
                                   [&] {
                                       asked += u'c';
                                       return CompositorAnswer{login.wayland, login.layerShell};
                                   },
                               .askXServer =
                                   [&] {
                                       asked += u'x';
                                       return login.x11;
                                   }};
    const DisplayDecision decided = decideDisplay({login.chosenPlatform, login.sessionType}, probes);
    QCOMPARE(static_cast<int>(decided.backend), static_cast<int>(decision.backend));
    QCOMPARE(decided.layerShell, decision.layerShell);
    QTEST(asked, "asked");
}

void DisplayServerTest::listsTheCompositorsGlobals_data()
{
    QTest::addColumn<QList<QByteArray>>("interfaces");
    QTest::addColumn<bool>("layerShell");
    QTest::newRow("none") << QList<QByteArray>{} << false;
    QTest::newRow("others") << QList<QByteArray>{"wl_compositor", "xdg_wm_base", "zwlr_layer_shell_v10"} << false;
    QTest::newRow("layer shell") << QList<QByteArray>{"wl_compositor", "zwlr_layer_shell_v1", "wl_seat"} << true;
}

void DisplayServerTest::listsTheCompositorsGlobals()
{
    QFETCH(QList<QByteArray>, interfaces);
    QFETCH(bool, layerShell);
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("wayland"));
    const FakeCompositor compositor(path, Behaviour::lists, interfaces);
    const Variable display("WAYLAND_DISPLAY", path.toUtf8());
    const CompositorAnswer answer = displayProbes().askCompositor();
    QVERIFY(answer.isThere);
    QCOMPARE(answer.hasLayerShell, layerShell);
}

void DisplayServerTest::noCompositorAtTheAddress()
{
    const Variable display("WAYLAND_DISPLAY", "/nonexistent/wayland");
    const CompositorAnswer answer = displayProbes().askCompositor();
    QVERIFY(!answer.isThere);
    QVERIFY(!answer.hasLayerShell);
}

void DisplayServerTest::hangingCompositorIsGivenUp()
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("wayland"));
    const FakeCompositor compositor(path, Behaviour::hangs, {});
    const Variable display("WAYLAND_DISPLAY", path.toUtf8());
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!displayProbes().askCompositor().isThere);
    QVERIFY2(timer.elapsed() < 10000, "the probe hung");
}

void DisplayServerTest::compositorThatBreaksTheConnection()
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("wayland"));
    const FakeCompositor compositor(path, Behaviour::breaks, {});
    const Variable display("WAYLAND_DISPLAY", path.toUtf8());
    QVERIFY(!displayProbes().askCompositor().isThere);
}

void DisplayServerTest::deadXServer()
{
    const Variable display("DISPLAY", "unix:/nonexistent/x");
    QVERIFY(!displayProbes().askXServer());
}

void DisplayServerTest::noXServer()
{
    const Variable display("DISPLAY", std::nullopt);
    QVERIFY(!displayProbes().askXServer());
}

void DisplayServerTest::silentXServerIsGivenUp()
{
    const QString number = QString::number(40000 + QCoreApplication::applicationPid() % 20000);
    QLocalServer server; // the kernel takes the connection, and nobody answers
    server.setSocketOptions(QLocalServer::AbstractNamespaceOption);
    QVERIFY(server.listen(QStringLiteral("/tmp/.X11-unix/X") + number));
    const Variable display("DISPLAY", ':' + number.toLatin1());
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!displayProbes().askXServer());
    QVERIFY2(timer.elapsed() > 1900, "the server was not waited for");
    QVERIFY2(timer.elapsed() < 10000, "the probe hung");
}

void DisplayServerTest::preparesTheEnvironment_data()
{
    QTest::addColumn<std::optional<QByteArray>>("before");
    QTest::newRow("not set") << std::optional<QByteArray>();
    QTest::newRow("empty") << std::optional(QByteArray(""));
}

void DisplayServerTest::preparesTheEnvironment()
{
    QFETCH(std::optional<QByteArray>, before);
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("wayland"));
    const FakeCompositor compositor(path, Behaviour::lists, {"zwlr_layer_shell_v1"});
    const Variable display("WAYLAND_DISPLAY", path.toUtf8());
    const Variable x11("DISPLAY", std::nullopt);
    const Variable platform("QT_QPA_PLATFORM", before);
    const Variable bypass("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT", std::nullopt);
    QCOMPARE(static_cast<int>(prepareDisplay().backend), static_cast<int>(DisplayBackend::wayland));
    QCOMPARE(qgetenv("QT_QPA_PLATFORM"), QByteArray("wayland"));
    QCOMPARE(qgetenv("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT"), QByteArray("1"));
    restoreEnvironment();
    QVERIFY(!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"));
}

void DisplayServerTest::keepsTheUsersPlatform()
{
    const Variable display("WAYLAND_DISPLAY", "/nonexistent/wayland");
    const Variable platform("QT_QPA_PLATFORM", "minimal");
    const Variable bypass("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT", std::nullopt);
    QCOMPARE(static_cast<int>(prepareDisplay().backend), static_cast<int>(DisplayBackend::chosenByUser));
    restoreEnvironment();
    QCOMPARE(qgetenv("QT_QPA_PLATFORM"), QByteArray("minimal"));
    QVERIFY(!qEnvironmentVariableIsSet("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT"));
}

TICKWISE_TEST(DisplayServerTest)
#include "DisplayServerTest.moc"
