#include "pipeline/TimeText.h"

#include <QDateTime>
#include <QTranslator>

namespace tickwise {

namespace {

qint64 millisecondsSinceEpoch(TimePoint moment)
{
    return std::chrono::floor<std::chrono::milliseconds>(moment.time_since_epoch()).count();
}

QDateTime localTime(TimePoint moment)
{
    return QDateTime::fromMSecsSinceEpoch(millisecondsSinceEpoch(moment));
}

/// A format without the day periods of traditional Chinese, whose pattern letter Qt would write as it is.
QString withoutDayPeriods(QString format)
{
    return format.remove(u'B');
}

QString shortTime(const QDateTime &moment, const QLocale &locale)
{
    return locale.toString(moment.time(), withoutDayPeriods(locale.timeFormat(QLocale::ShortFormat)));
}

} // namespace

QLocale interfaceLocale(const LocalizationBundle &bundle, const QLocale &system)
{
    const QString language = bundle ? bundle->language() : QString();
    if (language.isEmpty())
        return system;
    const QLocale own(language);
    return own.language() == system.language() && own.script() == system.script() ? system : own;
}

QString timeOfDayText(TimePoint moment, const QTimeZone &zone, const QLocale &locale)
{
    return shortTime(QDateTime::fromMSecsSinceEpoch(millisecondsSinceEpoch(moment), zone), locale);
}

QString clockText(TimePoint moment, TimePoint now, const QLocale &locale)
{
    const QDateTime local = localTime(moment);
    if (local.date() == localTime(now).date())
        return shortTime(local, locale);
    return locale.toString(local, withoutDayPeriods(locale.dateTimeFormat(QLocale::ShortFormat)));
}

} // namespace tickwise
