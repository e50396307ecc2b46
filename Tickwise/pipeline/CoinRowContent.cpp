#include "pipeline/CoinRowContent.h"

#include "pipeline/PriceFormat.h"
#include "pipeline/TimeText.h"
#include "settings/PriceColors.h"
#include "support/Localization.h"

#include <cmath>

namespace tickwise {

namespace {

std::optional<double> finite(std::optional<double> value)
{
    return value && std::isfinite(*value) ? value : std::nullopt;
}

QString priceWithCurrency(const QString &price, BaseCurrency currency)
{
    return localized(QStringLiteral("tooltip.exactPrice")).arg(price, rawValue(currency));
}

QString spokenChange(double change)
{
    const QString key = change >= 0 ? QStringLiteral("a11y.change.up") : QStringLiteral("a11y.change.down");
    return localized(key).arg(QString::asprintf("%.2f", std::abs(change)));
}

} // namespace

CoinRowContent coinRowContent(const CoinRowInputs &inputs)
{
    const Coin &coin = inputs.coin;
    const std::optional<double> price = finite(coin.currentPrice);
    const std::optional<double> change = finite(coin.priceChange24hPercent);
    CoinRowContent content;
    content.symbol = coin.symbol;
    content.hasPrice = price.has_value();
    content.price = price ? formatPrice(*price) : noPriceText();
    if (price)
        content.priceColor = priceColor(inputs.settings, change);
    content.isDelisted = coin.status == CoinStatus::delisted;
    if (content.isDelisted)
        content.change = localized(QStringLiteral("coin.status.delisted"));
    else if (change)
        content.change = changeText(*change);
    return content;
}

QString coinRowToolTip(const CoinRowInputs &inputs)
{
    const std::optional<double> price = finite(inputs.coin.currentPrice);
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
        lines.append(localized(QStringLiteral("tooltip.fetchedAt")).arg(clockText(*coin.lastUpdated, inputs.now)));
    return lines.join(QLatin1Char('\n'));
}

QString coinRowSpokenText(const CoinRowInputs &inputs)
{
    const std::optional<double> price = finite(inputs.coin.currentPrice);
    const std::optional<double> change = finite(inputs.coin.priceChange24hPercent);
    const auto listed = [](const QString &texts, const QString &text) {
        return localized(QStringLiteral("a11y.list")).arg(texts, text);
    };
    const QString text = listed(inputs.coin.name, price ? priceWithCurrency(formatPrice(*price), inputs.currency)
                                                        : localized(QStringLiteral("tooltip.noPrice")));
    if (inputs.coin.status == CoinStatus::delisted)
        return listed(text, localized(QStringLiteral("coin.status.delisted")));
    return change ? listed(text, spokenChange(*change)) : text;
}

} // namespace tickwise
