#pragma once

#include <QLoggingCategory>

namespace tickwise {

/// The subsystem of every log line; a category is declared as `Q_LOGGING_CATEGORY(lcX, "com.pelmo.tickwise.X")`.
///
/// Levels: `qCWarning` is the error level (journal priority 3), `qCCritical` the fault level (2), `qCInfo` a notice
/// about the run (6), `qCDebug` detail that is off by default (7).
inline constexpr char logSubsystem[] = "com.pelmo.tickwise";

} // namespace tickwise
