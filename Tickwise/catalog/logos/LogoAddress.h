#pragma once

#include <QString>

namespace tickwise {

/// True when the text is an address that a logo may be loaded from: https, on one of the two logo image hosts.
bool isLogoAddress(const QString &text);

} // namespace tickwise
