#include "catalog/CoinId.h"

#include <algorithm>

namespace tickwise {

namespace {

constexpr qsizetype longestId = 80;

bool isLowerAlphanumeric(QChar c)
{
    return (c >= QLatin1Char('a') && c <= QLatin1Char('z')) || (c >= QLatin1Char('0') && c <= QLatin1Char('9'));
}

} // namespace

bool isCoinId(QStringView text)
{
    const auto isIdCharacter = [](QChar c) { return isLowerAlphanumeric(c) || c == QLatin1Char('-'); };
    return !text.isEmpty() && text.size() <= longestId && isLowerAlphanumeric(text.front()) &&
           std::all_of(text.begin(), text.end(), isIdCharacter);
}

} // namespace tickwise
