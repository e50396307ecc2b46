#pragma once

#include "support/Clock.h"
#include "support/Localization.h"

#include <QLocale>
#include <QTimeZone>

namespace tickwise {

/// The locale of the interface's language: the system's where that speaks the same language, else the language's own.
QLocale interfaceLocale(const LocalizationBundle &bundle = currentLocalizationBundle(),
                        const QLocale &system = QLocale::system());

/// The time of day in that zone.
QString timeOfDayText(TimePoint moment, const QTimeZone &zone, const QLocale &locale);

/// The local time of day, with its date when that is not the day of `now`.
QString clockText(TimePoint moment, TimePoint now, const QLocale &locale = interfaceLocale());

} // namespace tickwise
