#include "pipeline/TimeText.h"

#include <QDateTime>
#include <QTranslator>

namespace tickwise {

namespace {

QDateTime localTime(TimePoint moment)
{
    const auto sinceEpoch = std::chrono::floor<std::chrono::milliseconds>(moment.time_since_epoch());
    return QDateTime::fromMSecsSinceEpoch(sinceEpoch.count());
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

QString clockText(TimePoint moment, TimePoint now, const QLocale &locale)
{
    const QDateTime local = localTime(moment);
    return local.date() == localTime(now).date() ? locale.toString(local.time(), QLocale::ShortFormat)
                                                 : locale.toString(local, QLocale::ShortFormat);
}

} // namespace tickwise
