#pragma once

#include <QByteArray>

namespace tickwise {

/// The document with `null` for every number beyond the range of a double and `\ufffd` for every escape that is half a
/// surrogate pair. The result has the same length, so that offsets stay; anything else, valid or not, is left alone.
QByteArray repairedJson(const QByteArray &document);

} // namespace tickwise
