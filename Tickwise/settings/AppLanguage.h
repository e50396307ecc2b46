#pragma once

#include "support/RawValue.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace tickwise {

/// The interface languages, in the order of their picker; stored by raw value ("system", "en", "zh-Hans", "zh-Hant").
enum class AppLanguage
{
    system,
    en,
    zhHans,
    zhHant
};

QString rawValue(AppLanguage language);

template<>
std::vector<AppLanguage> allCases<AppLanguage>();

/// The language that a choice means for a user with these preferred languages (BCP 47, most preferred first); never
/// `system`. A tag is compared as it stands, with its case and its hyphens.
AppLanguage effectiveLanguage(AppLanguage language, const QStringList &preferredLanguages);

/// The user's preferred languages as BCP 47 tags, such as "zh-TW", most preferred first.
QStringList preferredLanguages();

} // namespace tickwise
