#include "support/IsoDate.h"

#include <QDateTime>

namespace tickwise {

using std::chrono::seconds;

QString isoDateText(TimePoint instant)
{
    const auto sinceEpoch = std::chrono::floor<seconds>(instant).time_since_epoch();
    return QDateTime::fromSecsSinceEpoch(sinceEpoch.count(), Qt::UTC).toString(Qt::ISODate);
}

std::optional<TimePoint> parseIsoDate(const QString &text)
{
    const QDateTime date = QDateTime::fromString(text, Qt::ISODate);
    if (!date.isValid())
        return std::nullopt;
    const seconds sinceEpoch(date.toSecsSinceEpoch());
    // Between any two instants from 1970 on, the clock's duration does not overflow.
    constexpr auto latest = std::chrono::floor<seconds>(TimePoint::max().time_since_epoch());
    if (sinceEpoch < seconds::zero() || sinceEpoch > latest)
        return std::nullopt;
    const TimePoint instant(sinceEpoch);
    return isoDateText(instant) == text ? std::optional(instant) : std::nullopt;
}

} // namespace tickwise
