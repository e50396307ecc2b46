#include "ui/controls/WindowActivation.h"

#include <QApplication>
#include <QWidget>

namespace tickwise {

namespace {

/// Where a launcher leaves a token, and Qt looks for that of the next activation.
constexpr char tokenVariable[] = "XDG_ACTIVATION_TOKEN";

/// The window inside a panel's tray has no frame, nor has the popover.
bool isOpenWindow(const QWidget &window)
{
    return window.isVisible() && !window.isMinimized() && !window.windowFlags().testFlag(Qt::FramelessWindowHint);
}

} // namespace

void bringToFront(QWidget &window)
{
    // An X11 window that is minimized stays so, whatever else is asked of it.
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
}

void bringOpenWindowsToFront(const QString &token)
{
    if (!token.isEmpty())
        qputenv(tokenVariable, token.toUtf8());
    for (QWidget *const window : QApplication::topLevelWidgets()) {
        if (isOpenWindow(*window)) {
            window->raise();
            window->activateWindow();
        }
    }
    // It holds for one activation; programs that are started later must not inherit it.
    qunsetenv(tokenVariable);
}

QString takeActivationToken()
{
    QString token = qEnvironmentVariable(tokenVariable);
    qunsetenv(tokenVariable);
    return token;
}

} // namespace tickwise
