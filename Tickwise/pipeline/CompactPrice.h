#pragma once

#include <QString>

namespace tickwise {

/// The price in at most five characters or so: "67.4K", "1.23M", "0.124".
QString compactPrice(double price);

/// A grouped price text ("67,432") made compact; a text that is short already, or no number, stays as it is.
QString compactPrice(const QString &price);

} // namespace tickwise
