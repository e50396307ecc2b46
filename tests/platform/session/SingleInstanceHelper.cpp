// A process that claims to be the only one: prints its role, then what it is asked, one line each, until its input
// ends. Arguments: the application's id, the folder of the lock file, then the addresses to open; "--hang" as the first
// of those lets it stop listening once it is the first copy.
#include "platform/dbus/SessionBus.h"
#include "platform/session/SingleInstance.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <cstdio>
#include <unistd.h>

using namespace tickwise;

namespace {

void say(const QString &line)
{
    std::puts(line.toUtf8().constData());
    std::fflush(stdout);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    const bool hangs = arguments.value(3) == QStringLiteral("--hang");
    const bool endsAfterOne = arguments.value(3) == QStringLiteral("--once");
    const QStringList addresses = arguments.mid(hangs || endsAfterOne ? 4 : 3);
    SessionBus bus;
    SingleInstance instance(arguments.at(1), bus, arguments.at(2));
    QObject::connect(&instance, &SingleInstance::activated, &instance,
                     [](const QString &token) { say(QStringLiteral("activated %1").arg(token)); });
    QObject::connect(&instance, &SingleInstance::urlsOpened, &instance,
                     [](const QStringList &opened, const QString &token) {
                         say(QStringLiteral("opened %1 %2").arg(opened.join(u' '), token));
                     });
    if (instance.claim(addresses, qEnvironmentVariable("XDG_ACTIVATION_TOKEN")) ==
        SingleInstance::Role::alreadyRunning) {
        say(QStringLiteral("alreadyRunning"));
        return 0;
    }
    say(QStringLiteral("first"));
    char byte = 0;
    if (hangs) {
        while (::read(STDIN_FILENO, &byte, 1) > 0) {
        }
        return 0;
    }
    if (endsAfterOne) {
        QObject::connect(&instance, &SingleInstance::urlsOpened, &application, &QCoreApplication::quit,
                         Qt::QueuedConnection);
        return application.exec();
    }
    const QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &application, &QCoreApplication::quit);
    return application.exec();
}
