// The floor of the whole-process measurements: an empty Qt Widgets program with a tray icon. Prints "ready" and the
// CLOCK_MONOTONIC seconds when its event loop runs.
#include <QApplication>
#include <QIcon>
#include <QPainter>
#include <QSystemTrayIcon>
#include <QTimer>

#include <cstdio>
#include <ctime>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QPixmap pixmap(22, 22);
    pixmap.fill(Qt::red);
    QSystemTrayIcon tray((QIcon(pixmap)));
    tray.show();
    QTimer::singleShot(0, &application, [] {
        std::timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        std::printf("ready %lld.%09ld\n", static_cast<long long>(now.tv_sec), now.tv_nsec);
        std::fflush(stdout);
    });
    return QApplication::exec();
}
