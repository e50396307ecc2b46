#include "pipeline/StatusItemContent.h"

#include "pipeline/PriceFormat.h"
#include "settings/PriceColors.h"
#include "support/Localization.h"

#include <QDateTime>
#include <QLocale>

#include <algorithm>

namespace tickwise {

namespace {

QString applicationName()
{
    return QStringLiteral("Tickwise");
}

// Carries white text legibly where no price colour does.
constexpr QRgb neutralPill = qRgb(0x6B, 0x72, 0x80);

void colourText(StatusItemContent &content, const StatusItemInputs &inputs, const Coin &coin)
{
    const std::optional<QColor> color = priceColor(inputs.settings, coin.priceChange24hPercent);
    const bool pill = inputs.settings.showMenuBarBackground;
    if (!pill) {
        content.textColor = color;
    } else if (inputs.settings.priceColorEnabled) {
        content.textColor = QColor(Qt::white);
        content.pillColor = color.value_or(QColor(neutralPill));
    } else {
        const bool dark = inputs.appearance == PanelAppearance::dark;
        content.textColor = dark ? QColor(Qt::white) : QColor(Qt::black);
        content.pillColor = dark ? QColor(Qt::black) : QColor(Qt::white);
    }
}

StatusTrend trend(std::optional<double> change)
{
    if (!change)
        return StatusTrend::none;
    return *change >= 0 ? StatusTrend::up : StatusTrend::down;
}

QStringList priceLines(const StatusItemInputs &inputs, const Coin &coin)
{
    QStringList lines{localized(QStringLiteral("tooltip.exactPrice"))
                          .arg(exactPrice(*coin.currentPrice), rawValue(inputs.settings.baseCurrency))};
    if (coin.priceChange24hPercent)
        lines.append(localized(QStringLiteral("tooltip.change24h")).arg(changeText(*coin.priceChange24hPercent)));
    if (coin.lastUpdated)
        lines.append(ageText(*coin.lastUpdated, inputs.now));
    return lines;
}

void describeFailure(QStringList &lines, const std::optional<ProviderFailure> &failure)
{
    if (failure)
        lines << localized(QStringLiteral("tooltip.failure.title")) << failureText(*failure);
}

StatusItemContent logoContent(const StatusItemInputs &inputs, const Coin *coin)
{
    StatusItemContent content;
    content.title = applicationName();
    content.toolTipTitle = coin ? coin->name : applicationName();
    QStringList lines;
    if (coin)
        lines.append(localized(QStringLiteral("tooltip.noPrice")));
    describeFailure(lines, inputs.failure);
    content.toolTipBody = lines.join(QLatin1Char('\n'));
    return content;
}

StatusItemContent priceContent(const StatusItemInputs &inputs, const Coin &coin)
{
    StatusItemContent content;
    content.logo = false;
    content.symbol = coin.symbol;
    content.price = formatPrice(*coin.currentPrice);
    content.title = coin.symbol + QLatin1Char(' ') + content.price;
    content.text =
        inputs.settings.showMenuBarBackground ? QLatin1Char(' ') + content.title + QLatin1Char(' ') : content.title;
    content.trend = trend(coin.priceChange24hPercent);
    colourText(content, inputs, coin);
    content.toolTipTitle = coin.name;
    QStringList lines = priceLines(inputs, coin);
    describeFailure(lines, inputs.failure);
    content.toolTipBody = lines.join(QLatin1Char('\n'));
    return content;
}

} // namespace

const Coin *statusItemCoin(const std::vector<Coin> &coins, const AppSettings &settings)
{
    if (settings.menuBarContent == MenuBarContent::icon || coins.empty())
        return nullptr;
    const auto displayed =
        std::find_if(coins.begin(), coins.end(), [&](const Coin &coin) { return coin.id == settings.displayedCoinId; });
    return displayed == coins.end() ? &coins.front() : &*displayed;
}

StatusItemContent statusItemContent(const StatusItemInputs &inputs)
{
    const Coin *const coin = statusItemCoin(inputs.coins, inputs.settings);
    return coin && coin->currentPrice ? priceContent(inputs, *coin) : logoContent(inputs, coin);
}

QString ageText(TimePoint then, TimePoint now)
{
    constexpr double fresh = 5;
    constexpr int minute = 60;
    constexpr int hour = 60 * minute;
    constexpr int day = 24 * hour;
    const double seconds = secondsBetween(then, now);
    const auto text = [seconds](const QString &key, int unit) {
        const QString amount = QString::number(static_cast<qint64>(seconds / unit));
        return localized(QStringLiteral("tooltip.age")).arg(localized(key).arg(amount));
    };
    if (seconds < fresh)
        return localized(QStringLiteral("tooltip.age.now"));
    if (seconds < minute)
        return text(QStringLiteral("tooltip.age.seconds"), 1);
    if (seconds < hour)
        return text(QStringLiteral("tooltip.age.minutes"), minute);
    if (seconds < day)
        return text(QStringLiteral("tooltip.age.hours"), hour);
    return text(QStringLiteral("tooltip.age.days"), day);
}

QString failureText(const ProviderFailure &failure)
{
    switch (failure.reason) {
    case FailureReason::offline:
        return localized(QStringLiteral("failure.offline"));
    case FailureReason::hostNotFound:
        return localized(QStringLiteral("failure.hostNotFound"));
    case FailureReason::unreachable:
        return localized(QStringLiteral("failure.unreachable"));
    case FailureReason::timedOut:
        return localized(QStringLiteral("failure.timedOut"));
    case FailureReason::clockWrong:
        return localized(QStringLiteral("failure.clockWrong"));
    case FailureReason::secureConnectionFailed:
        return localized(QStringLiteral("failure.secureConnectionFailed"));
    case FailureReason::regionBlocked:
        return localized(QStringLiteral("failure.regionBlocked"));
    case FailureReason::rateLimited:
        break;
    case FailureReason::badAnswer:
        return localized(QStringLiteral("failure.badAnswer"));
    case FailureReason::cancelled:
        return localized(QStringLiteral("failure.cancelled"));
    }
    if (!failure.until)
        return localized(QStringLiteral("failure.rateLimited"));
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(failure.until->time_since_epoch());
    const QDateTime until = QDateTime::fromMSecsSinceEpoch(milliseconds.count());
    return localized(QStringLiteral("failure.rateLimitedUntil"))
        .arg(QLocale::system().toString(until.time(), QLocale::ShortFormat));
}

} // namespace tickwise
