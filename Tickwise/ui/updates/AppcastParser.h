#pragma once

#include "support/Result.h"
#include "ui/updates/AppcastItem.h"

#include <vector>

namespace tickwise {

/// A feed with more bytes is refused.
inline constexpr qint64 maximumAppcastBytes = 1024LL * 1024;
/// A feed with more items is refused.
inline constexpr std::size_t maximumAppcastItems = 500;
/// Release notes are cut to so many UTF-16 units.
inline constexpr qsizetype maximumReleaseNotesLength = 32LL * 1024;

/// The items of an update feed: RSS 2.0 with the sparkle namespace, in document order.
///
/// An item without a version or without an enclosure is left out. The whole feed is refused with a `DecodingError` when
/// it is not well-formed, is no RSS, is larger than a limit, has a document type declaration of any kind, or names a
/// package that is not behind https.
Result<std::vector<AppcastItem>> parseAppcast(const QByteArray &bytes);

} // namespace tickwise
