#pragma once

#include "support/Clock.h"

#include <QString>

#include <optional>

namespace tickwise {

/// The instant in UTC as ISO 8601 text in whole seconds, such as "2026-01-31T08:15:00Z"; a fraction is cut off.
QString isoDateText(TimePoint instant);

/// The instant that a text in exactly that form names; none for any other text, for a date that does not exist, and for
/// one before 1970 or beyond the clock's range.
std::optional<TimePoint> parseIsoDate(const QString &text);

} // namespace tickwise
