#pragma once

#include <QString>

namespace tickwise {

// Characters as a person counts them: Unicode's extended grapheme clusters.

/// The number of characters of the text.
qsizetype characterCount(const QString &text);

/// The first `count` characters of the text; all of it when it has no more.
QString firstCharacters(const QString &text, qsizetype count);

} // namespace tickwise
