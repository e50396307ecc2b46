#include "pipeline/NotificationService.h"

#include "pipeline/AlertRule.h"
#include "pipeline/PriceFormat.h"
#include "support/Localization.h"
#include "support/MainThread.h"

#include <QLocale>
#include <QLoggingCategory>

#include <cmath>

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcNotifications, "com.pelmo.tickwise.Notifications")

/// The template with its placeholders %1, %2 ... replaced; a template without them, such as a bare key, stays as it is.
QString filled(const QString &key, const LocalizationBundle &bundle, const std::vector<QString> &arguments)
{
    const QString text = localized(key, bundle);
    QString result;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const int number = text[i] == u'%' && i + 1 < text.size() ? text[i + 1].digitValue() : -1;
        if (number < 1 || number > static_cast<int>(arguments.size())) {
            result += text[i];
            continue;
        }
        result += arguments[static_cast<std::size_t>(number - 1)];
        ++i;
    }
    return result;
}

QString priceText(const Coin &coin)
{
    return coin.currentPrice ? formatAlertPrice(*coin.currentPrice) : noPriceText();
}

QString moveText(double changePercent)
{
    return QString::asprintf("%.2f%%", std::abs(changePercent));
}

QString directionKey(double changePercent)
{
    return changePercent >= 0 ? QStringLiteral("notification.direction.up")
                              : QStringLiteral("notification.direction.down");
}

QString alertText(const Coin &coin, CoinAlertKind kind, double level, double changePercent,
                  const LocalizationBundle &bundle)
{
    const auto text = [&](const QString &key, const std::vector<QString> &arguments) {
        return filled(key, bundle, arguments);
    };
    const QString price = priceText(coin);
    switch (kind) {
    case CoinAlertKind::above:
        return text(QStringLiteral("notification.priceAlert.above"), {coin.symbol, formatAlertPrice(level), price});
    case CoinAlertKind::below:
        return text(QStringLiteral("notification.priceAlert.below"), {coin.symbol, formatAlertPrice(level), price});
    case CoinAlertKind::change:
        return text(QStringLiteral("notification.priceAlert.change"),
                    {coin.symbol, localized(directionKey(changePercent), bundle), moveText(changePercent), price});
    case CoinAlertKind::notSet:
        return text(QStringLiteral("notification.priceAlert.notSet"), {coin.symbol, price});
    }
    return {};
}

/// Seconds since 1970 in the shortest decimal text that tells them apart, always with a fraction.
QString secondsText(TimePoint time)
{
    const QString text = QString::number(secondsBetween(TimePoint(), time), 'f', QLocale::FloatingPointShortest);
    return text.contains(u'.') ? text : text + QStringLiteral(".0");
}

} // namespace

UserNotification priceAlertNotification(const Coin &coin, CoinAlertKind kind, double threshold, double changePercent,
                                        double usdToTargetRate, TimePoint now, const LocalizationBundle &bundle)
{
    return {.identifier = QStringLiteral("price-alert-%1-%2").arg(coin.id, secondsText(now)),
            .title = filled(QStringLiteral("notification.priceAlert.title"), bundle, {coin.name}),
            .body = alertText(coin, kind, alertLevel(threshold, usdToTargetRate), changePercent, bundle)};
}

NotificationService::NotificationService(UserNotificationCenter &center, Clock clock)
    : m_center(center)
    , m_clock(std::move(clock))
{
}

void NotificationService::requestAuthorization()
{
    m_center.requestAuthorization([](const Result<void> &result) {
        if (!result)
            qCWarning(lcNotifications, "Notification permission error: %s",
                      qUtf8Printable(description(result.error())));
    });
}

void NotificationService::notify(const Coin &coin, CoinAlertKind kind, BaseCurrency, double threshold,
                                 double changePercent, double usdToTargetRate)
{
    requireMainThread();
    const UserNotification notification = priceAlertNotification(coin, kind, threshold, changePercent, usdToTargetRate,
                                                                 m_clock(), currentLocalizationBundle());
    m_center.add(notification, [](const Result<void> &result) {
        if (!result)
            qCWarning(lcNotifications, "Failed to deliver notification: %s",
                      qUtf8Printable(description(result.error())));
    });
}

} // namespace tickwise
