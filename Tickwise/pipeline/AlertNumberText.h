#pragma once

#include <QString>

#include <optional>

namespace tickwise {

/// What a field for an alert's number keeps of a text: the digits "0" to "9" and the first ".".
QString filteredAlertNumber(const QString &text);

/// A stored threshold as the field shows it: at most 6 fraction digits, no grouping. 2.0 gives "2".
QString alertNumberText(double threshold);

/// The number that a filtered text means; none for a text without a digit and for a number too large to hold.
std::optional<double> alertNumber(const QString &filteredText);

} // namespace tickwise
