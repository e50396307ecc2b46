#include "pipeline/PriceFormat.h"

#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>

#include <array>
#include <charconv>
#include <cmath>
#include <memory>

namespace tickwise {

namespace {

constexpr int groupingSize = 3;

int maximumFractionDigits(double value)
{
    if (value < 1)
        return 4;
    return value < 100 ? 2 : 0;
}

std::unique_ptr<icu::DecimalFormat> makeFormatter()
{
    UErrorCode status = U_ZERO_ERROR;
    auto formatter = std::make_unique<icu::DecimalFormat>(
        icu::UnicodeString("#,##0"), icu::DecimalFormatSymbols(icu::Locale("en_US_POSIX"), status), status);
    if (U_FAILURE(status))
        return nullptr;
    formatter->setGroupingUsed(true);
    formatter->setGroupingSize(groupingSize);
    formatter->setRoundingMode(icu::DecimalFormat::kRoundHalfEven);
    formatter->setMinimumFractionDigits(0);
    return formatter;
}

QString plainText(double value)
{
    std::array<char, 400> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed).ptr;
    return QString::fromLatin1(buffer.data(), end - buffer.data());
}

} // namespace

QString formatPrice(double value)
{
    static const std::unique_ptr<icu::DecimalFormat> formatter = makeFormatter();
    if (!formatter || !std::isfinite(value))
        return QString::number(value);
    formatter->setMaximumFractionDigits(maximumFractionDigits(value));
    icu::UnicodeString text;
    formatter->format(value, text);
    return QString::fromUtf16(text.getBuffer(), text.length());
}

QString exactPrice(double value)
{
    if (!std::isfinite(value))
        return QString::number(value);
    QString text = plainText(value);
    const qsizetype point = text.indexOf(QLatin1Char('.'));
    const qsizetype firstDigit = value < 0 ? 1 : 0;
    for (qsizetype at = (point < 0 ? text.size() : point) - groupingSize; at > firstDigit; at -= groupingSize)
        text.insert(at, QLatin1Char(','));
    return text;
}

QString changeText(double percent)
{
    return QString::asprintf(percent >= 0 ? "+%.2f%%" : "%.2f%%", percent);
}

} // namespace tickwise
