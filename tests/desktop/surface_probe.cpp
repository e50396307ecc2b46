// A colored window on the desktop without the rest of the program, commanded by the lines of the standard input:
//   show X Y WIDTH HEIGHT, hide, place X Y WIDTH HEIGHT, interactive, passive, quit
//   screens   prints the visible frames and the bottom of the primary screen
//   frame     prints where the surface says that the window is
// The argument "takes-input" gives it the pointer. Dragging moves the window. What happens is printed, one event a
// line:
//   ready, unavailable, pressed X Y, key TEXT, focus, noFocus, screensChanged, translucent YES, painted WIDTH HEIGHT

#include "platform/session/DisplayServer.h"
#include "platform/surfaces/DesktopSurfaceFactory.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QSocketNotifier>
#include <QWidget>

#include <cstdio>

#include <unistd.h>

using namespace tickwise;

namespace {

constexpr QColor desktopColor(200, 40, 180);
constexpr QColor ordinaryColor(40, 120, 200);

/// A window as every program has it.
class OrdinarySurface : public DesktopSurface
{
public:
    void show(QWidget &window, const QRect &frame) override
    {
        m_window = &window;
        window.setGeometry(frame);
        window.show();
    }
    void hide() override { m_window->hide(); }
    bool isShown() const override { return m_window; }
    void place(const QRect &) override {}
    QRect frame() const override { return m_window->geometry(); }
    QPoint pointerPosition(const QMouseEvent &event) const override { return event.globalPosition().toPoint(); }
    void setInteractive(bool) override {}
    DesktopScreens screens() const override { return {}; }
    bool isTranslucent() const override { return false; }

private:
    QWidget *m_window = nullptr;
};

void print(const QString &line)
{
    std::puts(qUtf8Printable(line));
    std::fflush(stdout);
}

QString text(const QRect &rect)
{
    return QStringLiteral("%1,%2,%3,%4").arg(rect.x()).arg(rect.y()).arg(rect.width()).arg(rect.height());
}

std::unique_ptr<DesktopSurface> makeSurface(bool isOrdinary, bool takesPointer)
{
    using Pointer = DesktopSurfaceOptions::Pointer;
    if (isOrdinary)
        return std::make_unique<OrdinarySurface>();
    return makeDesktopSurface({"tickwise-probe", takesPointer ? Pointer::isTaken : Pointer::passesThrough});
}

class Window : public QWidget
{
public:
    Window(DesktopSurface &surface, QColor color)
        : m_surface(surface)
        , m_color(color)
    {
        setWindowTitle(QStringLiteral("surface_probe"));
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter(this).fillRect(rect(), m_color);
        print(QStringLiteral("painted %1 %2").arg(width()).arg(height()));
    }
    void mousePressEvent(QMouseEvent *event) override
    {
        m_grip = m_surface.pointerPosition(*event) - m_surface.frame().topLeft();
        print(QStringLiteral("pressed %1 %2").arg(event->position().x()).arg(event->position().y()));
    }
    void mouseMoveEvent(QMouseEvent *event) override
    {
        m_surface.place(QRect(m_surface.pointerPosition(*event) - m_grip, size()));
    }
    void keyPressEvent(QKeyEvent *event) override { print(QStringLiteral("key ") + event->text()); }

private:
    DesktopSurface &m_surface;
    QColor m_color;
    QPoint m_grip;
};

void printScreens(const DesktopScreens &screens)
{
    QStringList words{QStringLiteral("screens"), QString::number(screens.origin.y())};
    for (const QRect &frame : screens.visibleFrames)
        words.append(text(frame));
    print(words.join(QLatin1Char(' ')));
}

void execute(const QStringList &words, DesktopSurface &surface, QWidget &window)
{
    const QString &command = words.front();
    const auto frame = [&words] {
        return QRect(words[1].toInt(), words[2].toInt(), words[3].toInt(), words[4].toInt());
    };
    if (command == u"show")
        surface.show(window, frame());
    else if (command == u"hide")
        surface.hide();
    else if (command == u"place")
        surface.place(frame());
    else if (command == u"interactive" || command == u"passive")
        surface.setInteractive(command == u"interactive");
    else if (command == u"screens")
        printScreens(surface.screens());
    else if (command == u"frame")
        print(QStringLiteral("frame ") + text(surface.frame()));
    else if (command == u"quit")
        QCoreApplication::quit();
    else
        qFatal("no command is called %s", qUtf8Printable(command));
}

} // namespace

int main(int argc, char **argv)
{
    if (prepareDisplay().backend == DisplayBackend::none)
        return 1;
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QStringList arguments = QCoreApplication::arguments();
    const bool isOrdinary = arguments.contains(QStringLiteral("ordinary"));
    const auto surface = makeSurface(isOrdinary, arguments.contains(QStringLiteral("takes-input")));
    if (!surface) {
        print(QStringLiteral("unavailable"));
        return 0;
    }
    Window window(*surface, isOrdinary ? ordinaryColor : desktopColor);
    surface->onScreensChanged = [] { print(QStringLiteral("screensChanged")); };
    surface->onTranslucencyChanged = [&surface] {
        print(QStringLiteral("translucent %1").arg(surface->isTranslucent()));
    };
    QByteArray buffer;
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        char chunk[4096];
        const ssize_t length = ::read(STDIN_FILENO, chunk, sizeof chunk);
        if (length <= 0)
            QCoreApplication::quit();
        buffer.append(chunk, std::max<ssize_t>(length, 0));
        QList<QByteArray> lines = buffer.split('\n');
        buffer = lines.takeLast();
        for (const QByteArray &line : lines)
            execute(QString::fromUtf8(line).split(QLatin1Char(' ')), *surface, window);
    });
    print(QStringLiteral("ready"));
    return QApplication::exec();
}
