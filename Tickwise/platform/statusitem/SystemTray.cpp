#include "platform/statusitem/SystemTray.h"

namespace tickwise {

QRect fromDevicePixels(const QRect &pixels, QPoint screenOrigin, double devicePixelRatio)
{
    const QPointF offset = QPointF(pixels.topLeft() - screenOrigin) / devicePixelRatio;
    return QRect(screenOrigin + offset.toPoint(), pixels.size() / devicePixelRatio);
}

} // namespace tickwise
