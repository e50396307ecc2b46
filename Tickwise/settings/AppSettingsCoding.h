#pragma once

#include "settings/AppSettings.h"
#include "support/Result.h"

#include <QByteArray>

namespace tickwise {

/// The record in a JSON document of any version. Every field that cannot be read takes its default; the only errors are
/// a document over the size limit, text that is not JSON, and a top level that is not an object.
Result<AppSettings> decodeSettings(const QByteArray &document);

/// The record as one JSON object in key order, doubles exactly. A number that is not finite, or a result over the size
/// limit, is an error.
Result<QByteArray> encodeSettings(const AppSettings &settings);

} // namespace tickwise
