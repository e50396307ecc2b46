#include "platform/surfaces/LayerClickCatcher.h"

#include <QEnterEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>

namespace tickwise {

namespace {

constexpr char catcherName[] = "tickwise-click-catcher";

} // namespace

LayerClickCatcher::LayerClickCatcher(const LayerShell &shell, QScreen &screen, Events events)
    : m_events(std::move(events))
{
    setFlags(Qt::Window | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
    QSurfaceFormat surfaceFormat = format();
    surfaceFormat.setAlphaBufferSize(8);
    setFormat(surfaceFormat);
    setScreen(&screen);
    setGeometry(screen.geometry());
    create();
    const LayerSurfaceRequest request{.name = catcherName,
                                      .layer = LayerSurfaceRequest::overlay,
                                      .exclusiveZone = LayerSurfaceRequest::overPanels,
                                      .screen = &screen};
    m_surface = shell.makeSurface(*this, request);
    if (!m_surface || !m_surface->configure())
        return;
    m_surface->onResized = [this](QSize size) { resize(size); };
    resize(m_surface->size());
    show();
}

LayerClickCatcher::~LayerClickCatcher()
{
    m_surface.reset();
    hide();
    destroy();
}

bool LayerClickCatcher::event(QEvent *event)
{
    if (event->type() == QEvent::Enter)
        m_events.entered(static_cast<QEnterEvent *>(event)->position().toPoint());
    return QRasterWindow::event(event);
}

void LayerClickCatcher::mouseReleaseEvent(QMouseEvent *)
{
    m_events.clicked();
}

void LayerClickCatcher::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(event->rect(), Qt::transparent);
}

} // namespace tickwise
