#pragma once

#include <QString>

namespace tickwise {

/// Release notes as plain text: markup is taken away, block elements become lines, list entries get a bullet, the usual
/// character references are resolved. Nothing that the notes refer to is loaded. Text without markup keeps its lines.
/// Linear in its length.
QString releaseNotesText(const QString &notes);

} // namespace tickwise
