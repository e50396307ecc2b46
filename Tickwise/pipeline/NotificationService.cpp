#include "pipeline/NotificationService.h"

#include "pipeline/AlertRule.h"
#include "pipeline/PriceFormat.h"

#include <QLoggingCategory>
#include <QThread>

#include <cmath>

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcNotifications, "com.pelmo.tickwise.Notifications")

QString priceText(const Coin &coin)
{
    return coin.currentPrice ? formatPrice(*coin.currentPrice) : QStringLiteral("--");
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
    const auto text = [&](const QString &key) { return localized(key, bundle); };
    const QString price = priceText(coin);
    switch (kind) {
    case CoinAlertKind::above:
        return text(QStringLiteral("notification.priceAlert.above")).arg(coin.symbol, formatPrice(level), price);
    case CoinAlertKind::below:
        return text(QStringLiteral("notification.priceAlert.below")).arg(coin.symbol, formatPrice(level), price);
    case CoinAlertKind::change:
        return text(QStringLiteral("notification.priceAlert.change"))
            .arg(coin.symbol, text(directionKey(changePercent)), moveText(changePercent), price);
    case CoinAlertKind::notSet:
        return text(QStringLiteral("notification.priceAlert.notSet")).arg(coin.symbol, price);
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
            .title = localized(QStringLiteral("notification.priceAlert.title"), bundle).arg(coin.name),
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
    Q_ASSERT(m_center.thread() == QThread::currentThread());
    const UserNotification notification = priceAlertNotification(coin, kind, threshold, changePercent, usdToTargetRate,
                                                                 m_clock(), LocalizationManager::shared().bundle());
    m_center.add(notification, [](const Result<void> &result) {
        if (!result)
            qCWarning(lcNotifications, "Failed to deliver notification: %s",
                      qUtf8Printable(description(result.error())));
    });
}

} // namespace tickwise
