#include "pipeline/PriceFormat.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace tickwise {

namespace {

constexpr int groupingSize = 3;
constexpr int significantDigits = 3; // in alerts
constexpr int changeDecimals = 2;

int maximumFractionDigits(double value)
{
    if (value < 1)
        return 4;
    return value < 100 ? 2 : 0;
}

int fractionDigitsOfAlert(double value)
{
    const int needed = value == 0 ? 0 : significantDigits - 1 - int(std::floor(std::log10(std::abs(value))));
    return std::max(maximumFractionDigits(value), needed);
}

/// The shortest decimal text that reads back as exactly this value, without an exponent.
QByteArray plainText(double value)
{
    std::array<char, 400> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed).ptr;
    return {buffer.data(), end - buffer.data()};
}

/// Whether the digits from `first` on, behind the last one that is kept, round it up: half to even.
bool roundsUp(const QByteArray &digits, qsizetype first)
{
    const char dropped = digits[first];
    if (dropped != '5')
        return dropped > '5';
    const bool isMoreThanHalf = std::any_of(digits.begin() + first + 1, digits.end(), [](char c) { return c > '0'; });
    const bool isLastOdd = first > 0 && (digits[first - 1] - '0') % 2 == 1;
    return isMoreThanHalf || isLastOdd;
}

/// Adds one in the last place; the result has a digit more where all were nines.
void countUp(QByteArray &digits)
{
    for (qsizetype at = digits.size() - 1; at >= 0; --at) {
        if (digits[at] != '9') {
            ++digits[at];
            return;
        }
        digits[at] = '0';
    }
    digits.prepend('1');
}

/// A plain decimal text with at most so many digits behind the point, and no zeros at its end.
QByteArray rounded(QByteArray text, int maximumFraction)
{
    const qsizetype point = text.indexOf('.');
    if (point < 0)
        return text;
    const bool isNegative = text.startsWith('-');
    QByteArray digits = text.remove(point, 1).mid(isNegative ? 1 : 0);
    const qsizetype whole = point - (isNegative ? 1 : 0);
    qsizetype fraction = digits.size() - whole;
    if (fraction > maximumFraction) {
        const qsizetype kept = whole + maximumFraction;
        const bool up = roundsUp(digits, kept);
        digits.truncate(kept);
        if (up)
            countUp(digits);
        fraction = maximumFraction;
    }
    digits.insert(digits.size() - fraction, '.');
    while (digits.endsWith('0'))
        digits.chop(1);
    if (digits.endsWith('.'))
        digits.chop(1);
    return isNegative ? '-' + digits : digits;
}

QString grouped(const QByteArray &plain)
{
    QString text = QString::fromLatin1(plain);
    const qsizetype point = text.indexOf(QLatin1Char('.'));
    const qsizetype firstDigit = text.startsWith(QLatin1Char('-')) ? 1 : 0;
    for (qsizetype at = (point < 0 ? text.size() : point) - groupingSize; at > firstDigit; at -= groupingSize)
        text.insert(at, QLatin1Char(','));
    return text;
}

} // namespace

QString formatPrice(double value)
{
    return std::isfinite(value) ? grouped(rounded(plainText(value), maximumFractionDigits(value)))
                                : QString::number(value);
}

QString formatAlertPrice(double value)
{
    return std::isfinite(value) ? grouped(rounded(plainText(value), fractionDigitsOfAlert(value)))
                                : QString::number(value);
}

QString exactPrice(double value)
{
    return std::isfinite(value) ? grouped(plainText(value)) : QString::number(value);
}

// Lists ask for it at each poll, for each coin: QString's own formatting takes ten times as long.
QString changeText(double percent)
{
    if (percent == 0)
        percent = 0; // exchanges send "-0.00", too
    std::array<char, 400> buffer{};
    char *const end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), percent, std::chars_format::fixed, changeDecimals)
            .ptr;
    const QString number = QString::fromLatin1(buffer.data(), end - buffer.data());
    return (percent >= 0 ? QStringLiteral("+") : QString()) + number + QLatin1Char('%');
}

} // namespace tickwise
