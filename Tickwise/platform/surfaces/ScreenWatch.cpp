#include "platform/surfaces/ScreenWatch.h"

#include <QGuiApplication>
#include <QScreen>

namespace tickwise {

ScreenWatch::ScreenWatch(std::function<void()> changed)
{
    m_pending.setSingleShot(true);
    m_pending.setInterval(0);
    connect(&m_pending, &QTimer::timeout, this, std::move(changed));
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](QScreen *screen) {
        follow(screen);
        touch();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &ScreenWatch::touch);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &ScreenWatch::touch);
    for (QScreen *const screen : QGuiApplication::screens())
        follow(screen);
}

void ScreenWatch::follow(QScreen *screen)
{
    connect(screen, &QScreen::geometryChanged, this, &ScreenWatch::touch);
    connect(screen, &QScreen::availableGeometryChanged, this, &ScreenWatch::touch);
    connect(screen, &QScreen::logicalDotsPerInchChanged, this, &ScreenWatch::touch);
}

} // namespace tickwise
