// tickwise-widget as it is, which prints "painted" and the CLOCK_MONOTONIC seconds once it has painted its list.
#include "platform/session/DisplayServer.h"
#include "widget/program/WidgetProgram.h"

#include <QApplication>

#include <cstdio>
#include <ctime>

using namespace tickwise;

namespace {

void printTime()
{
    std::timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    std::printf("painted %lld.%09ld\n", static_cast<long long>(now.tv_sec), now.tv_nsec);
    std::fflush(stdout);
}

class FirstPaint : public QObject
{
protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && qobject_cast<WidgetListView *>(watched)) {
            QTimer::singleShot(0, printTime);
            qApp->removeEventFilter(this);
        }
        return false;
    }
};

} // namespace

int main(int argc, char **argv)
{
    if (!prepareWidgetProcess())
        return 1;
    const QApplication application(argc, argv);
    FirstPaint firstPaint;
    qApp->installEventFilter(&firstPaint);
    return WidgetProgram().run();
}
