#pragma once

#include <QByteArray>

namespace tickwise {

/// Whether the parts of a PNG file end inside the file.
///
/// Decoders take memory for the length that a part declares, up to 2 GiB and written to, before they read it. A file
/// that declares more bytes than it has is cut short or made for that.
bool pngPartsFit(QByteArrayView bytes);

/// The same for the pictures that an icon file names, and for the parts of those that are PNG files. An icon file of
/// more than 256 pictures does not fit either.
bool iconPartsFit(QByteArrayView bytes);

} // namespace tickwise
