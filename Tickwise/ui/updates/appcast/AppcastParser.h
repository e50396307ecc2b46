#pragma once

#include "support/Result.h"
#include "ui/updates/appcast/AppcastItem.h"

#include <vector>

namespace tickwise {

/// A feed with more bytes is refused.
inline constexpr qint64 maximumAppcastBytes = 1024LL * 1024;
/// A feed with more items is refused.
inline constexpr std::size_t maximumAppcastItems = 500;
/// Release notes are cut to so many UTF-16 units.
inline constexpr qsizetype maximumReleaseNotesLength = 32LL * 1024;

/// The items of an update feed that are for this system: RSS 2.0 with the sparkle namespace, in document order.
///
/// An item is left out when it has no version, no enclosure for Linux or for any system, or a channel. Of several
/// enclosures the first for Linux counts, else the first for any system. The whole feed is refused with a
/// `DecodingError` when it is not UTF-8, declares another encoding, is not well-formed, is no RSS, is larger than a
/// limit, has a document type declaration of any kind, or names such a package that is not behind https.
Result<std::vector<AppcastItem>> parseAppcast(const QByteArray &bytes);

} // namespace tickwise
