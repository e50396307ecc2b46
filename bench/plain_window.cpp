// The floor of the widget's measurements: a plain Qt window that draws ten rows of text. Prints "painted" and the
// CLOCK_MONOTONIC seconds once it has painted.
#include <QApplication>
#include <QPainter>
#include <QTimer>
#include <QWidget>

#include <cstdio>
#include <ctime>
#include <utility>

namespace {

constexpr int rows = 10;
constexpr int rowHeight = 39;

void printTime()
{
    std::timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    std::printf("painted %lld.%09ld\n", static_cast<long long>(now.tv_sec), now.tv_nsec);
    std::fflush(stdout);
}

class Window : public QWidget
{
protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        for (int row = 0; row < rows; ++row)
            painter.drawText(QRect(14, 14 + row * rowHeight, 336, rowHeight), Qt::AlignVCenter,
                             QStringLiteral("%1 a row of text, 67,432 +1.50%").arg(row));
        if (!std::exchange(m_hasPainted, true))
            QTimer::singleShot(0, printTime);
    }

private:
    bool m_hasPainted = false;
};

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    Window window;
    window.resize(364, 439);
    window.show();
    return QApplication::exec();
}
