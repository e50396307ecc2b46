#include "pipeline/AlertNumberText.h"

#include "support/DecimalText.h"

#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>

#include <cmath>
#include <memory>

namespace tickwise {

namespace {

constexpr int levelFractionDigits = 6;

std::unique_ptr<icu::DecimalFormat> makeFormatter()
{
    UErrorCode status = U_ZERO_ERROR;
    auto formatter = std::make_unique<icu::DecimalFormat>(
        icu::UnicodeString("0"), icu::DecimalFormatSymbols(icu::Locale("en_US_POSIX"), status), status);
    if (U_FAILURE(status))
        return nullptr;
    formatter->setGroupingUsed(false);
    formatter->setMaximumFractionDigits(levelFractionDigits);
    formatter->setRoundingMode(icu::DecimalFormat::kRoundHalfEven);
    return formatter;
}

} // namespace

QString filteredAlertNumber(const QString &text)
{
    QString kept;
    bool hasPoint = false;
    for (const QChar character : text) {
        const bool isPoint = character == u'.';
        const bool isDigit = character >= u'0' && character <= u'9';
        if (isDigit || (isPoint && !hasPoint))
            kept.append(character);
        hasPoint = hasPoint || isPoint;
    }
    return kept;
}

QString alertNumberText(double threshold)
{
    static const std::unique_ptr<icu::DecimalFormat> formatter = makeFormatter();
    if (!formatter || !std::isfinite(threshold))
        return QString::number(threshold);
    icu::UnicodeString text;
    formatter->format(threshold, text);
    return QString::fromUtf16(text.getBuffer(), text.length());
}

std::optional<double> alertNumber(const QString &filteredText)
{
    return parseDecimal(filteredText.toStdString());
}

} // namespace tickwise
