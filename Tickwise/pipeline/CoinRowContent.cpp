#include "pipeline/CoinRowContent.h"

#include "pipeline/PriceFormat.h"
#include "settings/PriceColors.h"
#include "support/Localization.h"

#include <QDateTime>
#include <QLocale>

#include <cmath>

namespace tickwise {

namespace {

const QString noPrice = QStringLiteral("--");

std::optional<double> finite(std::optional<double> value)
{
    return value && std::isfinite(*value) ? value : std::nullopt;
}

QDateTime localTime(TimePoint time)
{
    return QDateTime::fromMSecsSinceEpoch(
        std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count());
}

/// The time alone for today, with the day before or after it.
QString timeText(TimePoint then, TimePoint now)
{
    const QDateTime time = localTime(then);
    const QString clock = time.time().toString(QStringLiteral("HH:mm:ss"));
    if (time.date() == localTime(now).date())
        return clock;
    return QLocale::system().toString(time.date(), QLocale::ShortFormat) + QLatin1Char(' ') + clock;
}

QString priceWithCurrency(const QString &price, BaseCurrency currency)
{
    return localized(QStringLiteral("tooltip.exactPrice")).arg(price, rawValue(currency));
}

QString toolTip(const CoinRowInputs &inputs, std::optional<double> price)
{
    const Coin &coin = inputs.coin;
    QStringList lines{coin.name};
    if (coin.status == CoinStatus::delisted)
        lines.append(localized(QStringLiteral("coin.status.delisted")));
    if (!price) {
        lines.append(localized(QStringLiteral("tooltip.noPrice")));
        return lines.join(QLatin1Char('\n'));
    }
    lines.append(priceWithCurrency(exactPrice(*price), inputs.currency));
    if (coin.lastUpdated)
        lines.append(localized(QStringLiteral("tooltip.fetchedAt")).arg(timeText(*coin.lastUpdated, inputs.now)));
    return lines.join(QLatin1Char('\n'));
}

QString spokenChange(double change)
{
    const QString key = change >= 0 ? QStringLiteral("a11y.change.up") : QStringLiteral("a11y.change.down");
    return localized(key).arg(QString::asprintf("%.2f", std::abs(change)));
}

QString accessibleText(const CoinRowInputs &inputs, std::optional<double> price, std::optional<double> change)
{
    const auto listed = [](const QString &texts, const QString &text) {
        return localized(QStringLiteral("a11y.list")).arg(texts, text);
    };
    const QString text = listed(inputs.coin.name, price ? priceWithCurrency(formatPrice(*price), inputs.currency)
                                                        : localized(QStringLiteral("tooltip.noPrice")));
    if (inputs.coin.status == CoinStatus::delisted)
        return listed(text, localized(QStringLiteral("coin.status.delisted")));
    return change ? listed(text, spokenChange(*change)) : text;
}

} // namespace

CoinRowContent coinRowContent(const CoinRowInputs &inputs)
{
    const Coin &coin = inputs.coin;
    const std::optional<double> price = finite(coin.currentPrice);
    const std::optional<double> change = finite(coin.priceChange24hPercent);
    CoinRowContent content;
    content.symbol = coin.symbol;
    content.price = price ? formatPrice(*price) : noPrice;
    if (price)
        content.priceColor = priceColor(inputs.settings, change);
    content.isDelisted = coin.status == CoinStatus::delisted;
    if (content.isDelisted)
        content.change = localized(QStringLiteral("coin.status.delisted"));
    else if (change)
        content.change = changeText(*change);
    content.toolTip = toolTip(inputs, price);
    content.accessibleText = accessibleText(inputs, price, change);
    return content;
}

} // namespace tickwise
