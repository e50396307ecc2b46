#pragma once

#include <QString>

namespace tickwise {

/// True when the text is an address that a logo may be loaded from: a URL whose scheme is exactly "https" and whose
/// host is exactly one of the two logo image hosts, both as the text spells them.
bool isLogoAddress(const QString &text);

} // namespace tickwise
