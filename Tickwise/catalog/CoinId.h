#pragma once

#include <QStringView>

namespace tickwise {

/// True for 1 to 80 lower-case letters, digits and hyphens that do not start with a hyphen. Such a text is a safe file
/// name.
bool isCoinId(QStringView text);

} // namespace tickwise
