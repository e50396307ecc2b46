#pragma once

#include "widget/WidgetSnapshot.h"

namespace tickwise {

/// The snapshot that the widgets were last asked to show, and when.
struct WidgetReload
{
    WidgetSnapshot snapshot;
    TimePoint time;
};

/// Whether the widgets should redraw for the new snapshot: when there was no reload yet, 300 s after the last one, when
/// a display setting or the watchlist differs, when a coin has a price for the first time, and when a price moved by
/// more than 1 %. A price that is gone and a 24-hour change that differs do not count.
bool needsWidgetReload(const std::optional<WidgetReload> &last, const WidgetSnapshot &snapshot);

} // namespace tickwise
