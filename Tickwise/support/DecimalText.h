#pragma once

#include <optional>
#include <string_view>

namespace tickwise {

/// The number that the whole text spells: an optional sign, then a decimal floating-point number in the C locale, no
/// blanks, nothing after it. A value that is not finite is no value.
std::optional<double> parseDecimal(std::string_view text);

} // namespace tickwise
