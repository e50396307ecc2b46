// The smallest program with a status item: tells which display it runs on, then what happens to its item, a line each.
#include "platform/session/DisplayServer.h"

#include <QApplication>
#include <QMenu>
#include <QPixmap>
#include <QSystemTrayIcon>

#include <cstdio>

using namespace tickwise;

namespace {

void say(const QString &line)
{
    std::puts(line.toUtf8().constData());
    std::fflush(stdout);
}

QIcon redSquare()
{
    QPixmap pixmap(22, 22);
    pixmap.fill(QColor(255, 0, 0));
    return QIcon(pixmap);
}

} // namespace

int main(int argc, char *argv[])
{
    const DisplayDecision decision = prepareDisplay();
    if (decision.backend == DisplayBackend::none) {
        std::fprintf(stderr, "%s\n", noDisplayMessage);
        return 1;
    }
    const QApplication application(argc, argv);
    say(QStringLiteral("platform %1%2")
            .arg(QGuiApplication::platformName(), decision.layerShell ? QStringLiteral(" layer-shell") : QString()));
    QMenu menu;
    QObject::connect(menu.addAction(QStringLiteral("Leave")), &QAction::triggered, &application, &QApplication::quit);
    QSystemTrayIcon item(redSquare());
    item.setToolTip(QStringLiteral("Probe"));
    item.setContextMenu(&menu);
    QObject::connect(&item, &QSystemTrayIcon::activated, &item,
                     [](QSystemTrayIcon::ActivationReason reason) { say(QStringLiteral("activated %1").arg(reason)); });
    item.show();
    return QApplication::exec();
}
