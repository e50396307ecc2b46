#include "platform/session/LogHandler.h"

#include "doubles/TestProgram.h"

#include <QImage>
#include <QLoggingCategory>
#include <QProcess>

using namespace tickwise;

namespace {

Q_LOGGING_CATEGORY(lcSettings, "com.pelmo.tickwise.Settings")
Q_LOGGING_CATEGORY(lcOther, "qt.something")

const char *const logArgument = "--log";

/// What a run of this program with `logArgument` does: one line of each kind.
int logEveryKind()
{
    installLogHandler("/no/such/socket");
    qCDebug(lcSettings, "detail");
    qCInfo(lcSettings, "notice");
    qCWarning(lcSettings, "Failed: %s", "first\nsecond");
    qCCritical(lcSettings, "fault");
    qCWarning(lcOther, "foreign");
    qWarning("plain");
    // A decoder's own complaint about a damaged picture is none of ours.
    return QImage::fromData(QByteArray("\xff\xd8\xff\xe0\0\x10JFIF\0\1\1\0\0\1\0\1\0\0\xff", 21), "jpeg").isNull() ? 0
                                                                                                                   : 1;
}

QMessageLogContext context(const char *category)
{
    return {"Source.cpp", 12, "void f()", category};
}

} // namespace

class LogHandlerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void journalFieldsOfALine();
    void journalFieldsOfAForeignLine();
    void journalKeepsLineBreaks();
    void priorities_data();
    void priorities();
    void stderrLines_data();
    void stderrLines();
    void withoutAJournal();
    void debugLinesOnRequest();
};

void LogHandlerTest::journalFieldsOfALine()
{
    const std::vector<QByteArray> expected{"MESSAGE=Failed: é", "PRIORITY=3",           "SUBSYSTEM=com.pelmo.tickwise",
                                           "CATEGORY=Settings", "CODE_FILE=Source.cpp", "CODE_LINE=12",
                                           "CODE_FUNC=void f()"};
    QCOMPARE(journalFields(QtWarningMsg, context("com.pelmo.tickwise.Settings"), QStringLiteral("Failed: é")),
             expected);
}

void LogHandlerTest::journalFieldsOfAForeignLine()
{
    const std::vector<QByteArray> expected{"MESSAGE=x", "PRIORITY=6", "CATEGORY=qt.something"};
    QCOMPARE(journalFields(QtInfoMsg, {nullptr, 0, nullptr, "qt.something"}, QStringLiteral("x")), expected);
    QCOMPARE(journalFields(QtInfoMsg, {}, QStringLiteral("x"))[2], QByteArray("CATEGORY=default"));
    QCOMPARE(journalFields(QtInfoMsg, context("com.pelmo.tickwiser"), {})[2],
             QByteArray("CATEGORY=com.pelmo.tickwiser"));
}

void LogHandlerTest::journalKeepsLineBreaks()
{
    QCOMPARE(journalFields(QtInfoMsg, {}, QStringLiteral("a\nPRIORITY=0"))[0], QByteArray("MESSAGE=a\nPRIORITY=0"));
}

void LogHandlerTest::priorities_data()
{
    QTest::addColumn<QtMsgType>("type");
    QTest::addColumn<QByteArray>("field");
    QTest::newRow("debug") << QtDebugMsg << QByteArray("PRIORITY=7");
    QTest::newRow("info") << QtInfoMsg << QByteArray("PRIORITY=6");
    QTest::newRow("error") << QtWarningMsg << QByteArray("PRIORITY=3");
    QTest::newRow("fault") << QtCriticalMsg << QByteArray("PRIORITY=2");
    QTest::newRow("fatal") << QtFatalMsg << QByteArray("PRIORITY=2");
}

void LogHandlerTest::priorities()
{
    QFETCH(QtMsgType, type);
    QFETCH(QByteArray, field);
    QCOMPARE(journalFields(type, {}, {})[1], field);
}

void LogHandlerTest::stderrLines_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("line");
    const auto row = [](const char *name, const QString &text, const char *escaped) {
        QTest::newRow(name) << text << QByteArray("com.pelmo.tickwise.X: error: ") + escaped + '\n';
    };
    row("plain", QStringLiteral("plain é 漲"), "plain é 漲");
    row("forged line", QStringLiteral("a\ncom.pelmo.tickwise.X: error: b"), "a\\ncom.pelmo.tickwise.X: error: b");
    row("carriage return", QStringLiteral("a\r\nb"), "a\\u000d\\nb");
    row("terminal escape", QStringLiteral("\u001b[2Ja\u009b1m"), "\\u001b[2Ja\\u009b1m");
    row("separators", QStringLiteral("a\u2028b\u2029c\u0085d"), "a\\u2028b\\u2029c\\u0085d");
    row("NUL", QStringLiteral("a") + QChar(0) + QStringLiteral("b"), "a\\u0000b");
    row("outside the basic plane", QStringLiteral("🚀"), "🚀");
}

void LogHandlerTest::stderrLines()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, line);
    QCOMPARE(stderrLine(QtWarningMsg, context("com.pelmo.tickwise.X"), text), line);
}

void LogHandlerTest::withoutAJournal()
{
    QProcess program;
    program.start(QCoreApplication::applicationFilePath(), {QString::fromLatin1(logArgument)});
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.exitCode(), 0);
    QCOMPARE(program.readAllStandardError(), QByteArray("com.pelmo.tickwise.Settings: info: notice\n"
                                                        "com.pelmo.tickwise.Settings: error: Failed: first\\nsecond\n"
                                                        "com.pelmo.tickwise.Settings: fault: fault\n"
                                                        "qt.something: error: foreign\n"
                                                        "default: error: plain\n"));
    QCOMPARE(program.readAllStandardOutput(), QByteArray());
}

void LogHandlerTest::debugLinesOnRequest()
{
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("com.pelmo.tickwise.*.debug=true"));
    program.setProcessEnvironment(environment);
    program.start(QCoreApplication::applicationFilePath(), {QString::fromLatin1(logArgument)});
    QVERIFY(program.waitForFinished());
    QVERIFY(program.readAllStandardError().startsWith("com.pelmo.tickwise.Settings: debug: detail\n"));
}

static const tickwise::testing::TestRoleRegistration logRole(logArgument, logEveryKind);
TICKWISE_TEST(LogHandlerTest)
#include "LogHandlerTest.moc"
