#include "platform/session/ApplicationOpener.h"

#include "doubles/LogCapture.h"
#include "doubles/PrivateBus.h"
#include "doubles/TestProgram.h"
#include "platform/dbus/SessionBus.h"
#include "platform/session/SingleInstance.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace tickwise;
using namespace tickwise::test;

namespace {

const QString address = QStringLiteral("tickwise://popover");
const QString openerCategory = QStringLiteral("com.pelmo.tickwise.ApplicationOpener");

QString openedApplicationId()
{
    return QStringLiteral("com.pelmo.tickwise.test");
}

/// A program that leaves its arguments in a file beside it.
class Program
{
public:
    Program()
    {
        QFile file(path());
        if (!file.open(QIODevice::WriteOnly))
            qFatal("the program cannot be written");
        file.write("#!/bin/sh\nprintf '%s' \"$*\" >\"$0.new\" && mv \"$0.new\" \"$0.arguments\"\n");
        file.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    }

    QString path() const { return m_folder.filePath(QStringLiteral("program")); }

    QString arguments() const
    {
        QFile file(path() + QStringLiteral(".arguments"));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

private:
    QTemporaryDir m_folder;
};

} // namespace

class ApplicationOpenerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void runningApplicationIsAsked();
    void busStartsTheApplication();
    void unknownNameStartsTheProgram();
    void withoutABusTheProgramIsStarted();
    void withoutAProgramThereIsALogLine();
};

void ApplicationOpenerTest::runningApplicationIsAsked()
{
    PrivateBus bus;
    const Program program;
    const SessionBus widgetBus(bus.address());
    SessionBus applicationBus(bus.address());
    SingleInstance instance(openedApplicationId(), applicationBus, QString());
    QCOMPARE(instance.claim({}, {}), SingleInstance::Role::first);
    QSignalSpy opened(&instance, &SingleInstance::urlsOpened);
    ApplicationOpener opener(widgetBus, openedApplicationId(), program.path());
    opener.open(address);
    QTRY_COMPARE(opened.size(), 1);
    QCOMPARE(opened.first().first().toStringList(), QStringList{address});
    QCOMPARE(program.arguments(), QString());
}

void ApplicationOpenerTest::busStartsTheApplication()
{
    PrivateBus bus;
    const Program program;
    bus.addActivation(openedApplicationId(), QStringLiteral(SINGLE_INSTANCE_HELPER " ") + openedApplicationId() +
                                                 QStringLiteral(" /nonexistent --once"));
    const SessionBus widgetBus(bus.address());
    const LogCapture log;
    ApplicationOpener opener(widgetBus, openedApplicationId(), program.path());
    opener.open(address);
    // The helper ends after the first address that it was asked to open, and answers before.
    QTRY_VERIFY(opener.findChildren<QObject *>().isEmpty());
    QCOMPARE(program.arguments(), QString());
    QVERIFY(log.texts(openerCategory).isEmpty());
}

void ApplicationOpenerTest::unknownNameStartsTheProgram()
{
    PrivateBus bus;
    const Program program;
    const SessionBus widgetBus(bus.address());
    ApplicationOpener opener(widgetBus, openedApplicationId(), program.path());
    opener.open(address);
    QTRY_COMPARE(program.arguments(), address);
}

void ApplicationOpenerTest::withoutABusTheProgramIsStarted()
{
    const Program program;
    const SessionBus noBus(QStringLiteral("unix:path=/nonexistent/bus"));
    ApplicationOpener opener(noBus, openedApplicationId(), program.path());
    opener.open(address);
    QTRY_COMPARE(program.arguments(), address);
}

void ApplicationOpenerTest::withoutAProgramThereIsALogLine()
{
    const LogCapture log;
    const SessionBus noBus(QStringLiteral("unix:path=/nonexistent/bus"));
    ApplicationOpener opener(noBus, openedApplicationId(), QStringLiteral("/nonexistent/program"));
    opener.open(address);
    QTRY_COMPARE(log.texts(openerCategory).size(), 1);
}

TICKWISE_TEST(ApplicationOpenerTest)
#include "ApplicationOpenerTest.moc"
