#include "support/MainThread.h"

#include "doubles/TestProgram.h"

#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace tickwise;

namespace {

/// Runs the action in a copy of this process; returns how it ended, as `waitpid` tells it.
int statusOfChild(const std::function<void()> &action)
{
    const pid_t child = ::fork();
    if (child == 0) {
        constexpr rlimit noCore{0, 0};
        ::setrlimit(RLIMIT_CORE, &noCore);
        std::signal(SIGABRT, SIG_DFL);
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
        action();
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return status;
}

} // namespace

class MainThreadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void passesOnTheMainThread();
    void endsTheProgramOnAnother();
};

void MainThreadTest::passesOnTheMainThread()
{
    const int status = statusOfChild([] { requireMainThread(); });
    QVERIFY(WIFEXITED(status));
    QCOMPARE(WEXITSTATUS(status), 0);
}

void MainThreadTest::endsTheProgramOnAnother()
{
    const int status = statusOfChild([] { std::thread([] { requireMainThread(); }).join(); });
    QVERIFY(WIFSIGNALED(status));
    QCOMPARE(WTERMSIG(status), SIGABRT);
}

TICKWISE_TEST(MainThreadTest)
#include "MainThreadTest.moc"
