#pragma once

namespace tickwise {

/// An update that a scheduled check found while the application was not in focus waits behind a badge.
inline constexpr bool supportsGentleScheduledUpdateReminders = true;

/// Whether the window of an update found by a scheduled check opens by itself.
constexpr bool shouldHandleShowingScheduledUpdate(bool inImmediateFocus)
{
    return inImmediateFocus;
}

/// Whether an update that was found becomes a badge instead of a window.
constexpr bool becomesReminder(bool handlesShowingUpdate, bool userInitiated)
{
    return supportsGentleScheduledUpdateReminders && !handlesShowingUpdate && !userInitiated;
}

} // namespace tickwise
