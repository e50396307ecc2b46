#include "ui/LaunchAtLoginService.h"

#include "doubles/LogCapture.h"
#include "doubles/TestProgram.h"
#include "ui/LoginItem.h"

using namespace tickwise;
using namespace tickwise::test;

namespace {

/// Answers from the event loop, in order, with what it is given.
class ScriptedLoginItem : public LoginItem
{
public:
    void setRegistered(bool registered, Completion<void> done) override
    {
        calls.append(registered);
        QMetaObject::invokeMethod(
            &m_context,
            [this, done = std::move(done)] {
                ++answered;
                done(result);
            },
            Qt::QueuedConnection);
    }

    QList<bool> calls;
    int answered = 0;
    Result<void> result;

private:
    QObject m_context;
};

} // namespace

class LaunchAtLoginServiceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void registersAndUnregisters();
    void failureIsLoggedWithItsDescription_data();
    void failureIsLoggedWithItsDescription();
};

void LaunchAtLoginServiceTest::registersAndUnregisters()
{
    ScriptedLoginItem item;
    LaunchAtLoginService service(item);
    const LogCapture log;
    service.setEnabled(true);
    service.setEnabled(false);
    QTRY_COMPARE(item.answered, 2);
    QCOMPARE(item.calls, (QList<bool>{true, false}));
    QCOMPARE(log.lines().size(), 0U);
}

void LaunchAtLoginServiceTest::failureIsLoggedWithItsDescription_data()
{
    QTest::addColumn<bool>("enabled");
    QTest::newRow("registration") << true;
    QTest::newRow("unregistration") << false;
}

void LaunchAtLoginServiceTest::failureIsLoggedWithItsDescription()
{
    QFETCH(bool, enabled);
    const Error error = FileError{QStringLiteral("/home/me/a 100%s file"), QStringLiteral("拒绝 refused")};
    ScriptedLoginItem item;
    item.result = failure(error);
    LaunchAtLoginService service(item);
    const LogCapture log;
    service.setEnabled(enabled);
    QTRY_COMPARE(log.lines().size(), 1U);
    QCOMPARE(log.lines().at(0).type, QtWarningMsg);
    QCOMPARE(log.lines().at(0).category, QStringLiteral("com.pelmo.tickwise.LaunchAtLogin"));
    QCOMPARE(log.lines().at(0).text, QStringLiteral("Failed to update login item: ") + description(error));
}

TICKWISE_TEST(LaunchAtLoginServiceTest)
#include "LaunchAtLoginServiceTest.moc"
