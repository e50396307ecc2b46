#pragma once

#include "widget/WidgetSnapshot.h"

namespace tickwise {

/// The snapshot that the widgets were last asked to show, and when.
struct WidgetReload
{
    WidgetSnapshot snapshot;
    TimePoint time;
};

/// Whether the widgets should redraw for the new snapshot: at first, after 300 s, for a change of what is displayed,
/// for a coin that gained its price, and for a price that moved by more than 1 %. A coin that lost its price and a
/// change of the 24-hour changes alone wait for the 300 s.
bool needsWidgetReload(const std::optional<WidgetReload> &last, const WidgetSnapshot &snapshot);

} // namespace tickwise
