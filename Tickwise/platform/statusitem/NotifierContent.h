#pragma once

#include "pipeline/StatusItemPainter.h"
#include "platform/statusitem/HostTraits.h"
#include "platform/statusitem/StatusItemWidth.h"
#include "platform/statusitem/StatusNotifierItem.h"

namespace tickwise {

/// The content as a status notifier item of that presentation. `scale` is the largest screen's device pixels a point;
/// `widths` remembers how wide the text has been.
StatusNotifierContent notifierContent(const StatusItemContent &content, const StatusItemStyle &style,
                                      StatusItemPresentation presentation, const ItemFormat &format, int scale,
                                      StatusItemWidth &widths);

/// The text beside the icon; empty in logo mode.
QString statusLabel(const StatusItemContent &content);

} // namespace tickwise
