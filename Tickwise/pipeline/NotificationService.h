#pragma once

#include "pipeline/PriceAlertNotifying.h"
#include "pipeline/UserNotificationCenter.h"
#include "support/Clock.h"
#include "support/Localization.h"

namespace tickwise {

/// The notification of an alert that fired, in the bundle's language. `threshold` is as stored, `changePercent` the
/// move since the baseline; `now` makes the identifier distinct.
UserNotification priceAlertNotification(const Coin &coin, CoinAlertKind kind, double threshold, double changePercent,
                                        double usdToTargetRate, TimePoint now, const LocalizationBundle &bundle);

/// Writes the text of price alerts and hands them to the desktop's notification service. Failures are log lines only.
/// Main thread only.
class NotificationService : public PriceAlertNotifying
{
public:
    explicit NotificationService(UserNotificationCenter &center, Clock clock = systemClock);

    /// Asks the notification service what it can do; once, at start-up.
    void requestAuthorization();

    void notify(const Coin &coin, CoinAlertKind kind, BaseCurrency currency, double threshold, double changePercent,
                double usdToTargetRate) override;

private:
    UserNotificationCenter &m_center;
    Clock m_clock;
};

} // namespace tickwise
